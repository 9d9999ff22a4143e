#!/usr/bin/env bash
# display_goes.sh <program>: what could not be saved is saved when the display goes away under the program.
set -euo pipefail
program=$1
here=$(dirname "$(readlink -f "$0")")
. "$here/../../scripts/setup.sh"
. "$here/../../scripts/display.sh"
start_display
export HOME=$work XDG_RUNTIME_DIR=$work DBUS_SESSION_BUS_ADDRESS=unix:path=/nonexistent QT_QPA_PLATFORM=xcb
list=$work/Documents/ltodolist.txt
traces=$work/traces

within_20_s() {
    within 20 "$@" || fail "not within 20 s: $*; the program's last line: $(tail -n 1 "$traces")"
}
focus() {
    within_20_s find_window "$started" "$1"
    xdotool windowfocus --sync "$window"
}

mkdir -p "$list" # nobody can write the list while a folder is in its place
"$program" >"$traces" 2>&1 &
started=$!
focus Oblino
xdotool key ctrl+n
focus 'New Task'
xdotool type --delay 20 "Paint fence"
errors=$(grep -c '^Error' "$traces" || true)
xdotool key Return
more_errors() { [ "$(grep -c '^Error' "$traces")" -gt "$errors" ]; }
within_20_s more_errors
rmdir "$list"
kill -KILL "$display"
wait "$started" || true # it ends as one that lost its display
grep -c 'Paint fence' "$list" | grep -qx 1
