#!/usr/bin/env bash
# picture.sh <program> <file.png>: starts the program on a virtual display, waits until its window is painted,
# saves a picture of it, ends the program and prints the picture's path.
set -euo pipefail
program=$1
picture=$2
work=$(mktemp -d)
trap 'kill $(jobs -p) 2>/dev/null || true; wait 2>/dev/null || true; rm -rf "$work"' EXIT

fail() {
    echo "picture.sh: $*" >&2
    exit 1
}

exec 3>"$work/number"
Xvfb -displayfd 3 -screen 0 1440x900x24 -nolisten tcp >"$work/xvfb.log" 2>&1 &
exec 3>&-
for _ in $(seq 100); do
    [ -s "$work/number" ] && break
    sleep 0.1
done
[ -s "$work/number" ] || fail "the virtual display did not start: $(tail -n 1 "$work/xvfb.log")"
DISPLAY=:$(cat "$work/number")
export DISPLAY

"$program" >"$work/program.log" 2>&1 &
started=$!
colours=0
for _ in $(seq 300); do
    kill -0 "$started" 2>/dev/null || fail "the program ended at its start: $(tail -n 1 "$work/program.log")"
    window=$(xdotool search --onlyvisible --pid "$started" 2>/dev/null | head -n 1 || true)
    if [ -n "$window" ]; then
        import -window "$window" "$work/picture.png" 2>/dev/null || true
        colours=$(identify -format %k "$work/picture.png" 2>/dev/null || echo 0)
        [ "$colours" -gt 16 ] && break # more than a bare background
    fi
    sleep 0.1
done
[ "$colours" -gt 16 ] || fail "the window was not painted within 30 s"
mkdir -p "$(dirname "$picture")"
cp "$work/picture.png" "$picture"
kill -TERM "$started"
wait "$started" || fail "the program did not end cleanly"
echo "$picture"
