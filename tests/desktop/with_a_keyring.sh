#!/bin/sh
# with_a_keyring.sh <program of the tests>: runs them with a keyring on a message bus of their own, and without a bus.
set -eu
HOME=$(mktemp -d)
export HOME XDG_RUNTIME_DIR="$HOME"
unset XDG_DATA_HOME XDG_CONFIG_HOME XDG_CACHE_HOME
trap 'rm -rf "$HOME"' EXIT
dbus-run-session -- sh -c '
    printf unlock | gnome-keyring-daemon --unlock --components=secrets >/dev/null
    "$0" tst_keyring keepsPasswordsUntilTheyAreRemoved' "$1"
DBUS_SESSION_BUS_ADDRESS=unix:path=/nonexistent "$1" tst_keyring saysThatThereIsNone
