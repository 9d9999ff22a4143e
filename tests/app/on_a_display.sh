#!/usr/bin/env bash
# on_a_display.sh <program>: without a display the program says so. On a virtual display and with real keys, starts it
# in an empty home, adds a task, quits, starts again and sees the task there. Then a task that could not be saved is
# saved when the display goes away under the program.
set -euo pipefail
program=$1
here=$(dirname "$(readlink -f "$0")")
. "$here/../../scripts/setup.sh"
. "$here/../../scripts/display.sh"
said=$(env -u DISPLAY -u WAYLAND_DISPLAY -u QT_QPA_PLATFORM "$program" 2>&1) && fail "it started without a display"
[ "$said" = "oblino: no display: neither DISPLAY nor WAYLAND_DISPLAY is set" ] || fail "without a display it said: $said"
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
start() {
    "$program" >"$traces" 2>&1 &
    started=$!
    focus Oblino
}
quit() {
    xdotool key ctrl+q
    wait "$started" # fails unless the program ended well
}
add_task() {
    xdotool key ctrl+n
    focus 'New Task'
    xdotool type --delay 20 "Paint fence"
    xdotool key Return
}
no_form() { ! find_window "$started" 'New Task'; }

start
add_task
within_20_s no_form
within_20_s grep -qs 'Paint fence' "$list"
focus Oblino
quit
start
within_20_s grep -q 'Number of Rows: 1' "$traces"
quit
grep -c 'Paint fence' "$list" | grep -qx 1

"$program" <&- >&- 2>&- &
started=$!
focus Oblino
[ "$(readlink "/proc/$started/fd/1")" = /dev/null ] || fail "traces go into what the program opened"
quit

rm "$list"
mkdir "$list" # nobody can write the list while a folder is in its place
start
errors=$(grep -c '^Error' "$traces" || true)
add_task
more_errors() { [ "$(grep -c '^Error' "$traces")" -gt "$errors" ]; }
within_20_s more_errors
rmdir "$list"
kill -KILL "$display"
wait "$started" || true # it ends as one that lost its display
grep -c 'Paint fence' "$list" | grep -qx 1
