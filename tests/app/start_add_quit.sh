#!/usr/bin/env bash
# start_add_quit.sh <program>: with real keys on the display that is set: starts the program in an empty home,
# adds a task, quits, starts again and sees the task there.
set -euo pipefail
program=$1
HOME=$(mktemp -d)
export HOME XDG_RUNTIME_DIR=$HOME DBUS_SESSION_BUS_ADDRESS=unix:path=/nonexistent QT_QPA_PLATFORM=xcb
trap 'kill $(jobs -p) 2>/dev/null || true; rm -rf "$HOME"' EXIT
list=$HOME/Documents/ltodolist.txt
traces=$HOME/traces

within_20_s() {
    for _ in $(seq 200); do
        "$@" && return
        sleep 0.1
    done
    echo "not within 20 s: $*" >&2
    exit 1
}
window() { xdotool search --all --onlyvisible --pid "$started" --name "$1" >"$HOME/window" 2>/dev/null; }
no_window() { ! window "$1"; }
focus() {
    within_20_s window "$1"
    xdotool windowfocus --sync "$(head -n 1 "$HOME/window")"
}
start() {
    "$program" >"$traces" 2>&1 &
    started=$!
    focus '^Oblino$'
}
quit() {
    xdotool key ctrl+q
    wait "$started" # fails unless the program ended well
}

start
xdotool key ctrl+n
focus '^New Task'
xdotool type --delay 20 "Paint fence"
xdotool key Return
within_20_s no_window '^New Task'
within_20_s grep -qs 'Paint fence' "$list"
focus '^Oblino$'
quit
start
within_20_s grep -q 'Number of Rows: 1' "$traces"
quit
grep -c 'Paint fence' "$list" | grep -qx 1
