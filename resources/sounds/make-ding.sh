#!/bin/sh
# Makes ding.mp3, the bell heard with a notice: two decaying sine partials.
# Needs sox and lame.  Usage: make-ding.sh [OUTPUT.mp3]
set -eu

here=$(cd "$(dirname "$0")" && pwd)
out=${1:-"$here/ding.mp3"}
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
trap 'exit 1' HUP INT TERM

# partial FILE HERTZ SECONDS
# "fade l" falls evenly by 100 dB over its length, which is an exponential
# decay; only its first 0.62 s are kept.
partial() {
    sox -D -R -n -r 44100 -c 1 -b 32 "$1" synth "$3" sine "$2" fade l 0 "$3" "$3" trim 0 0.62
}

partial "$work/low.wav" 1046.5 1.84
partial "$work/high.wav" 2637.0 0.80

# A 4 ms attack avoids a click; the short fade brings the end to true silence.
sox -D -m -v 0.50 "$work/low.wav" -v 0.22 "$work/high.wav" -b 16 "$work/ding.wav" \
    fade h 0.004 0.62 0.08 norm -6

lame --quiet -t -m m -b 64 --noreplaygain "$work/ding.wav" "$work/ding.mp3"

# The encoder signs the unused bytes at the end of the stream; blank that out.
LC_ALL=C sed 's/LAME[0-9.]\{5\}/UUUUUUUUU/g' "$work/ding.mp3" > "$out"
