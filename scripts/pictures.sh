#!/usr/bin/env bash
# pictures.sh [--program <file>] [<folder>]: makes the pictures of README.md, each window in light and in dark, in
# docs/pictures. It builds nothing; the program is build/release/oblino, and the stand-in for the desktop's
# settings is taken from the tests beside it.
set -euo pipefail
cd "$(dirname "$(readlink -f "$0")")/.."
. scripts/setup.sh
. scripts/display.sh

# Of each window beside the main one the name of its picture, its title and the keys that open it from the main
# window. Escape closes it.
windows=(
    "add|New Task|ctrl+n"
    "edit|Edit Task|ctrl+e"
    "clients|Clients|alt+o c"
    "team|Team Members|alt+o t"
    "sending|Send Schedules|alt+o s"
    "settings|Messaging Settings|alt+o m"
    "versions|Earlier Versions|alt+o v"
    "account|Cloud Account|alt+c a"
    "notes|Notes|alt+o n"
    "whiteboard|Whiteboard|alt+o w"
    "eraser|Data Eraser|alt+o d"
    "guide|User Guide|F1"
)

# name|starts in days|is due in days|from|to|color|status|priority|client|team member|description
tasks="
Audit the books|-9|-3|9:0|12:30|white|1|1|Harbor Cafe|Ann|Two folders, in the office
Fix the roof light|-6|-2|8:0|10:0|blue|1|2|Northwind Yard|Tom|
Order timber|-4|0|8:30|9:0|white|0|1|Northwind Yard|Maria|Larch, 24 boards of three metres
Prepare the invoice|-2|1|16:0|17:0|yellow|0|2|Harbor Cafe|Ann|The last quarter in one
Check the smoke alarms|-1|0|10:30|11:30|white|1|0|Smith & Sons|Jon|Ring at the side door
Paint the fence in the yard|0|4|8:15|12:0|green|0|1|Northwind Yard|Tom|Two coats, the second when dry
Deliver the chairs|0|0|14:0|15:30|white|0|2|Blue Door Gallery|Maria|Forty, by the back entrance
Hang the new show|1|2|9:0|17:0|purple|0|2|Blue Door Gallery|Jon|Bring the long ladder
Replace the tap in the kitchen|2|2|8:0|9:30|white|0|1|Harbor Cafe|Tom|
Measure the new counter|3|3|13:0|14:0|white|0|0|Harbor Cafe|Maria|Twice
Clear the gutters|4|6|8:0|11:0|blue|0|1|Smith & Sons|Tom|Wait for dry weather
Plan the street fair|6|20|10:0|12:0|red|0|2|Østergaard|Ann|Stalls, power, permits
Service the van|8|8|7:30|8:30|white|0|1||Tom|
Walk through the new hall|9|9|15:0|16:0|yellow|0|0|Østergaard|Ann|Keys are at the gate
"
clients=("Blue Door Gallery|+1 555 0101" "Harbor Cafe|+1 555 0102" "Northwind Yard|+1 555 0103" "Smith & Sons|+1 555 0104")
team=("Ann|+1 555 0111" "Jon|+1 555 0112" "Maria|+1 555 0113" "Tom|+1 555 0114")

color() {
    case $1 in
    white) echo "1.0|1.0|1.0|1.0" ;;
    yellow) echo "1.0|0.92|0.74|1.0" ;;
    green) echo "0.8|0.92|0.83|1.0" ;;
    blue) echo "0.82|0.9|0.97|1.0" ;;
    purple) echo "0.9|0.85|0.97|1.0" ;;
    red) echo "0.96|0.8|0.78|1.0" ;;
    esac
}

task_list() {
    local name start due from to color status priority client member text key
    local statuses=(Open Closed) priorities=(Low Medium High)
    while IFS='|' read -r name start due from to color status priority client member text; do
        [ -n "$name" ] || continue
        start=$(date -d "$start days" +%-m/%-d/%y)
        due=$(date -d "$due days" +%-m/%-d/%y)
        key=$(md5sum <<<"$name" | sed -E 's/(.{8})(.{4})(.{4})(.{4})(.{12}).*/\U\1-\2-\3-\4-\5/')
        printf '%s|' "$start" "$name" "$text" "$(color "$color")" "$due" "$status" "$priority" \
            "${statuses[status]}" "${priorities[priority]}" "$key" false "${from%:*}" "${from#*:}" "${to%:*}" \
            "${to#*:}" "$client"
        printf '%s^' "$member"
    done <<<"$tasks"
}

whiteboard() {
    convert -size 720x480 xc:white -fill none -strokewidth 5 \
        -stroke '#1f4e79' -draw 'path "M 440,370 L 120,370 L 120,110 M 120,110 L 560,110 L 560,370 L 520,370"' \
        -stroke '#1f4e79' -draw 'line 310,110 310,200 line 310,280 310,370' \
        -stroke '#b23a2e' -draw 'path "M 440,370 L 440,290 M 440,290 A 80,80 0 0 1 520,370"' \
        -stroke '#2e7d4f' -draw 'ellipse 215,240 55,38 0,360' \
        -stroke '#c98a1b' -draw 'path "M 640,440 C 590,455 520,450 482,398 M 476,430 L 480,396 L 512,408"' \
        "$1"
}

# make_home <folder>: what the program finds there is invented.
make_home() {
    mkdir -p "$1/Documents" "$1/.config/oblino"
    mkdir -m 700 "$1/run"
    task_list >"$1/Documents/ltodolist.txt"
    cat >"$1/Documents/ltodonotes.txt" <<'END'
Before the new show
  - ask for the second ladder
  - labels: oak frame, 12 pieces
  - the lights on the left do not dim

Northwind Yard pays per day, not per job.
Harbor Cafe: the water is turned off under the stairs.
END
    cat >"$1/.config/oblino/oblino.ini" <<'END'
[General]
twilioSID=AC00000000000000000000000000000000
twillioSecret=an invented secret
twillioSendingPhoneNo=+1 555 0100
twillioNotifications=true
twillioMessageTitle=Your week
twillioOverwrite=true
twillioTestPhoneNo=+1 555 0199
twillioMessageFooter=Questions? Call 555 0100.
twillioDelay=250
END
    cat >"$1/.config/oblino/cloud.ini" <<'END'
[General]
host=db.example.org
port=5432
database=ann_tasks
user=ann
tls=verify-full
END
    whiteboard "$1/ltodolistwhiteboard.png"
}

# start_desktop <scheme>: a message bus with nothing on it but the desktop's settings.
start_desktop() {
    cat >"$home/bus.conf" <<'END'
<busconfig><type>session</type><listen>unix:tmpdir=/tmp</listen>
<policy context="default"><allow send_destination="*"/><allow receive_sender="*"/><allow own="*"/></policy></busconfig>
END
    dbus-daemon --config-file="$home/bus.conf" --print-address --nofork >"$home/bus" 2>"$home/bus.log" &
    desktop=($!)
    within 10 test -s "$home/bus" || fail "the message bus did not start: $(tail -n 1 "$home/bus.log")"
    DBUS_SESSION_BUS_ADDRESS=$(cat "$home/bus") "$portal" "$1" >"$home/portal" 2>&1 &
    desktop+=($!)
    within 10 grep -qsx ready "$home/portal" || fail "the desktop's settings did not start: $(tail -n 1 "$home/portal")"
}

start_program() {
    (
        cd "$home"
        exec env -i HOME="$home" XDG_RUNTIME_DIR="$home/run" DISPLAY="$DISPLAY" LC_ALL=C.UTF-8 TZ=UTC \
            DBUS_SESSION_BUS_ADDRESS="$(cat bus)" "$program" >program.log 2>&1
    ) &
    started=$!
    within 30 find_window "$started" Oblino || fail "the program did not start: $(tail -n 1 "$home/program.log")"
    main=$window
}

# open_window <title> <keys>
open_window() {
    xdotool windowfocus --sync "$main"
    # shellcheck disable=SC2086 # the keys are words
    xdotool key $2
    within 20 find_window "$started" "$1" || fail "the window “$1” did not come"
    xdotool windowfocus --sync "$window"
}

gone() { ! find_window "$started" "$1"; }

# close_window <title>
close_window() {
    xdotool key Escape
    within 20 gone "$1" || fail "the window “$1” did not close"
}

# enter_contacts <title> <keys> <table> <name|number>...: opening the window once makes the table.
enter_contacts() {
    open_window "$1" "$2"
    close_window "$1"
    shift 2
    python3 - "$home/.local/share/oblino/Model.sqlite" "$@" <<'END' || fail "the contacts could not be entered"
import sqlite3, sys
file, table, *contacts = sys.argv[1:]
with sqlite3.connect(file) as store:
    store.executemany(f"INSERT INTO {table} (name, phoneNo) VALUES (?, ?)", [contact.split("|") for contact in contacts])
END
}

# picture <window> <name>
picture() {
    local file="$folder/$2-$appearance.png"
    within 20 save_picture "$1" "$home/picture.png" || fail "the window “$2” was not painted"
    convert "$home/picture.png" -bordercolor '#8b94a1' -border 1 -strip +dither -colors 256 \
        -define png:compression-level=9 "$file"
    echo "$file"
}

# picture_all <appearance> <scheme>
picture_all() {
    appearance=$1
    home=$work/$1
    make_home "$home"
    start_desktop "$2"
    start_program
    enter_contacts "Clients" "alt+o c" Clients "${clients[@]}"
    enter_contacts "Team Members" "alt+o t" TeamMembers "${team[@]}"
    # Goes from the search field to the first task, and on to one of today's.
    xdotool windowfocus --sync "$main" key ctrl+f Return Down Down Down Down Down
    for entry in "${windows[@]}"; do
        IFS='|' read -r name title keys <<<"$entry"
        open_window "$title" "$keys"
        picture "$window" "$name"
        close_window "$title"
    done
    picture "$main" main
    kill -TERM "$started"
    wait "$started" || fail "the program did not end cleanly"
    kill "${desktop[@]}"
}

program=build/release/oblino
if [ "${1:-}" = --program ]; then
    program=$2
    shift 2
fi
program=$(readlink -f "$program")
portal=$(dirname "$program")/tests/portal_standin
folder=${1:-docs/pictures}
[ -x "$program" ] && [ -x "$portal" ] || fail "build the program and its tests first (./test does): $program, $portal"
install_missing "${run_packages[@]}" "${display_packages[@]}" "${picture_packages[@]}"
mkdir -p "$folder"
start_display
xdotool mousemove 1439 899 # where it lies on no window
picture_all light 2
picture_all dark 1
