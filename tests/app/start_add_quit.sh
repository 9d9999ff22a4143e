#!/usr/bin/env bash
# start_add_quit.sh <program>: on a virtual display and with real keys, starts the program in an empty home, adds a
# task, quits, starts again and sees the task there.
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
no_window() { ! find_window "$started" "$1"; }
start() {
    "$program" >"$traces" 2>&1 &
    started=$!
    focus Oblino
}
quit() {
    xdotool key ctrl+q
    wait "$started" # fails unless the program ended well
}

start
xdotool key ctrl+n
focus 'New Task'
xdotool type --delay 20 "Paint fence"
xdotool key Return
within_20_s no_window 'New Task'
within_20_s grep -qs 'Paint fence' "$list"
focus Oblino
quit
start
within_20_s grep -q 'Number of Rows: 1' "$traces"
quit
grep -c 'Paint fence' "$list" | grep -qx 1
