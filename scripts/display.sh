# Sourced, after setup.sh, by the scripts that show the program on a display: starts a virtual display,
# finds and pictures windows on it. What the including script starts in the background ends with it, and the
# folder $work goes too.

work=$(mktemp -d)
trap 'kill $(jobs -p) 2>/dev/null || true; wait 2>/dev/null || true; rm -rf "$work"' EXIT

# within <seconds> <command>: repeats the command until it succeeds; fails when the time is over.
within() {
    local end=$((SECONDS + $1))
    shift
    until "$@"; do
        [ "$SECONDS" -lt "$end" ] || return 1
        sleep 0.1
    done
}

# Sets and exports DISPLAY, and sets $display to the server's process.
start_display() {
    exec 3>"$work/number"
    Xvfb -displayfd 3 -screen 0 1440x900x24 -nolisten tcp -noreset >"$work/xvfb.log" 2>&1 &
    display=$! # its process
    exec 3>&-
    within 10 test -s "$work/number" || fail "the virtual display did not start: $(tail -n 1 "$work/xvfb.log")"
    DISPLAY=:$(cat "$work/number")
    export DISPLAY
}

# find_window <process> <title>: sets $window to a visible window of the process with that title, which the
# program's name may follow.
find_window() {
    window=$(xdotool search --onlyvisible --all --pid "$1" --name "^$2( .*)?\$" 2>/dev/null | head -n 1) || true
    [ -n "$window" ]
}

# save_picture <window> <file.png>: succeeds when the window is painted and does not change any more.
save_picture() {
    local colours
    import -window "$1" "$2" 2>/dev/null && import -window "$1" "$2.again.png" 2>/dev/null || return 1
    colours=$(identify -format %k "$2")
    [ "$colours" -gt 16 ] || return 1 # no more than a bare background
    compare -metric AE "$2" "$2.again.png" null: 2>/dev/null
}
