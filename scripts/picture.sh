#!/usr/bin/env bash
# picture.sh <program> <file.png>: starts the program on a virtual display, waits until its window is painted,
# saves a picture of it, ends the program and prints the picture's path.
set -euo pipefail
scripts=$(dirname "$(readlink -f "$0")")
. "$scripts/setup.sh"
. "$scripts/display.sh"
program=$1
picture=$2

start_display
"$program" >"$work/program.log" 2>&1 &
started=$!

pictured() {
    kill -0 "$started" 2>/dev/null || fail "the program ended at its start: $(tail -n 1 "$work/program.log")"
    find_window "$started" Oblino && save_picture "$window" "$work/picture.png"
}
within 30 pictured || fail "the window was not painted within 30 s"
mkdir -p "$(dirname "$picture")"
cp "$work/picture.png" "$picture"
kill -TERM "$started"
wait "$started" || fail "the program did not end cleanly"
echo "$picture"
