#!/usr/bin/env bash
# Pictures in the screen's colours: with a Display P3 profile on the X root
# window (_ICC_PROFILE, as colour daemons set it), a plain sRGB red is shown
# in Display P3 numbers and a Display P3 photo keeps its own; without one,
# the red keeps its numbers and the photo is shown in sRGB. Read from
# screenshots.
set -euo pipefail
corpus=$(realpath "$(dirname "$0")/../corpus")
source "$(dirname "$0")/journey.sh"
begin_journeys "$@"

mkdir -p "$work/pictures"
photo=$corpus/wide-gamut-tests/P3-sRGB-red.jpg
cp "$photo" "$work/pictures/b-photo.jpg"
# A plain red of no profile; BMP carries none.
/usr/bin/python3 - "$work/red.ppm" <<'PY'
import sys
open(sys.argv[1], 'wb').write(b'P6\n400 300\n255\n' + b'\xff\x00\x00' * (400 * 300))
PY
convert "$work/red.ppm" BMP3:"$work/pictures/a-red.bmp"

# The photo's own profile (its APP2 ICC_PROFILE segments, in order) is the screen's.
screen_profile() {
    /usr/bin/python3 - "$photo" "$1" <<'PY'
import struct, sys
from Xlib import X, Xatom, display
data, parts, at = open(sys.argv[1], 'rb').read(), {}, 2
while at + 4 <= len(data) and data[at] == 0xFF and data[at + 1] not in (0xD9, 0xDA):
    length = struct.unpack('>H', data[at + 2:at + 4])[0]
    body = data[at + 4:at + 2 + length]
    if data[at + 1] == 0xE2 and body.startswith(b'ICC_PROFILE\0'):
        parts[body[12]] = body[14:]
    at += 2 + length
profile = b''.join(parts[n] for n in sorted(parts))
screen = display.Display()
root = screen.screen().root
atom = screen.intern_atom('_ICC_PROFILE')
if sys.argv[2] == 'set':
    assert len(profile) > 128, 'no profile in the photo'
    root.change_property(atom, Xatom.CARDINAL, 8, profile)
else:
    root.delete_property(atom)
screen.sync()
PY
}

# About how many screen pixels are within 2 of this colour.
pixels_of() {
    import -window root -depth 8 ppm:"$work/screen.ppm" 2>/dev/null || { echo 0; return; }
    /usr/bin/python3 - "$(dirname "$0")" "$work/screen.ppm" "$@" <<'PY'
import sys
sys.path.insert(0, sys.argv[1])
from screenshot import read_ppm
width, height, pixels = read_ppm(sys.argv[2])
want = [int(v) for v in sys.argv[3:6]]
# Every fifth pixel, counted five times: a second's work is enough.
print(5 * sum(1 for i in range(0, len(pixels) - 2, 15)
              if abs(pixels[i] - want[0]) <= 2 and abs(pixels[i + 1] - want[1]) <= 2 and abs(pixels[i + 2] - want[2]) <= 2))
PY
}

# Waits until at least `least` screen pixels show the colour.
wait_colour() {
    local what=$1 least=$2 count=0
    shift 2
    for _ in $(seq 1 50); do
        count=$(pixels_of "$@")
        (( count >= least )) && return 0
        sleep 0.2
    done
    cp "$work/screen.ppm" /tmp/vimora-display-profile.ppm 2>/dev/null || true
    echo "$what: $count screen pixels of ($*), expected at least $least (screenshot in /tmp/vimora-display-profile.ppm)" >&2
    exit 1
}

# The red is 400 x 300 at 100 %; the photo, 1000 x 1000, is fitted into the window.
journey() {
    start_vimora " a-red.bmp  - Vimora " "$work/pictures/a-red.bmp"
    wait_colour "$1, the plain red" 100000 "${@:2:3}"
    xdotool key --window "$main_window" Down
    wait_title " b-photo.jpg  - Vimora " "$1: Down"
    wait_colour "$1, the Display P3 photo" 100000 "${@:5:3}"
    stop_vimora
}

# The photo stores (234, 54, 40) for sRGB red in its profile, now the
# screen's: the plain red lands on those numbers, and the photo keeps them.
screen_profile set
journey "on a Display P3 screen" 234 54 40 234 54 40
screen_profile delete
journey "on a screen of no profile" 255 0 0 255 0 0
echo "both screens show the expected colours"
