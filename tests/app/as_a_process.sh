#!/usr/bin/env bash
# as_a_process.sh <program> <portal_standin>: starts the program with strange things in its home, without a place to
# write, a second time, after a crash and on a dark desktop, and ends it by signals.
set -euo pipefail
program=$1
portal=$2
here=$(dirname "$(readlink -f "$0")")
. "$here/../../scripts/setup.sh"
. "$here/../../scripts/display.sh"
unset XDG_CONFIG_HOME XDG_DATA_HOME XDG_STATE_HOME
export LC_ALL=C.UTF-8 QT_QPA_PLATFORM=offscreen DBUS_SESSION_BUS_ADDRESS=unix:path=/nonexistent
row="3/7/24|Paint fence||1.0|0.5|0.0|1.0|3/9/24|0|2|Open|High|key-1|false|9|30|17|0||^not a row^"
traces=$work/traces

move_to_new_home() {
    HOME=$(mktemp -d "$work/home.XXX")
    export HOME TMPDIR=$HOME XDG_RUNTIME_DIR=$HOME # where killed programs leave sockets
    mkdir "$HOME/Documents"
    printf %s "$row" >"$HOME/Documents/ltodolist.txt"
}
says() {
    within 20 grep -q "$1" "$traces" || fail "not said within 20 s: $1; the last line: $(tail -n 1 "$traces")"
}
# start [command that starts it]
start() {
    : >"$traces"
    "$@" "$program" >>"$traces" 2>&1 &
    started=$!
    says 'Dark Mode: '
}
end_by() {
    kill -s "$1" "$started"
    wait "$started" || fail "a signal ended it badly: $1"
}
content() { find "$1" -printf '%P %s %T@\n' | sort; }

answer() { # <exit code> <what is said> [arguments]
    local code=0 said
    said=$(env -u QT_QPA_PLATFORM HOME=/nonexistent "$program" "${@:3}" 2>&1) || code=$?
    [ "$code" = "$1" ] && [[ $said == $2 ]] || fail "${*:3} ends with $code and says: $said"
}
answer 0 'Oblino '[0-9]*.*[0-9] --version
answer 0 'Usage: oblino *--version*' -style fusion --help
answer 2 'oblino: unknown option --frob; try oblino --help' -platform=offscreen --frob
answer 2 'oblino: unknown argument list.txt; try oblino --help' list.txt

# with_home <signal> <command that changes the home>: it starts, changes nothing, and ends.
with_home() {
    local before
    move_to_new_home
    (cd "$HOME" && list=Documents/ltodolist.txt && eval "$2")
    before=$(content "$HOME/Documents")
    start
    end_by "$1"
    [ "$(content "$HOME/Documents")" = "$before" ] || fail "it changed the documents: $2"
}
with_home TERM 'rm $list'
with_home INT 'printf "\377\0|^" >$list'
with_home HUP 'rm $list; mkdir $list'
with_home TERM 'rm $list; mkfifo $list'
with_home TERM 'rm -r Documents; touch Documents'

move_to_new_home
rm -r "$HOME/Documents"
start
end_by TERM
[ -d "$HOME/Documents" ] || fail "it made no documents folder"

move_to_new_home
start
first=$started
before=$(content "$HOME")
said=$(timeout 20 "$program") || fail "a second start fails"
[ -z "$said" ] || fail "a second start said: $said"
[ "$(content "$HOME")" = "$before" ] || fail "a second start writes"
kill -KILL "$first" || fail "a second start ends the first"
wait "$first" || true
start
end_by TERM

dbus-daemon --session --nofork --print-address >"$work/address" 2>/dev/null &
within 10 test -s "$work/address" || fail "the message bus did not start"
read -r address <"$work/address"
DBUS_SESSION_BUS_ADDRESS=$address "$portal" 1 >"$work/portal" &
within 10 grep -q ready "$work/portal" || fail "the portal did not start"
start env DBUS_SESSION_BUS_ADDRESS="$address"
says 'Dark Mode: true'
! grep -q 'Dark Mode: false' "$traces" || fail "the list is read before the portal's answer"
end_by TERM

# Another user may not be able to read the folder in which the program was built.
chmod 0755 "$work"
cp "$program" "$work"
program=$work/$(basename "$program")
as_nobody=()
if [ "$(id -u)" = 0 ]; then
    as_nobody=(setpriv --reuid=65534 --regid=65534 --clear-groups)
fi
for missing in nothing HOME XDG_RUNTIME_DIR; do
    move_to_new_home
    chmod 0555 "$HOME"
    start "${as_nobody[@]}" env -u "$missing"
    [ "$missing" = HOME ] || says 'Read File 3/7/24'
    end_by TERM
    chmod 0755 "$HOME"
    [ "$(cat "$HOME/Documents/ltodolist.txt")" = "$row" ] || fail "it changed a list that it may only read"
done
