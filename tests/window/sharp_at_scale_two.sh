#!/usr/bin/env bash
# Starts the built program under a scale factor of 2 on a 2560 x 1600 screen
# with a checkerboard of one-pixel checks shown at " 100% ", and looks in a
# screenshot for the board with each picture pixel on one screen pixel.
set -euo pipefail
vimora=$1

source "$(dirname "$0")/session.sh"
in_xvfb 2560x1600 "$0" "$vimora"

fresh_home
mkdir -p "$work/pictures"

# 96 x 72 one-pixel checks, blue at the top left, red beside it.
python3 - "$work/pictures/board.ppm" <<'PY'
import sys
w, h = 96, 72
rows = bytearray()
for y in range(h):
    for x in range(w):
        rows += b'\x00\x00\xff' if (x + y) % 2 == 0 else b'\xff\x00\x00'
open(sys.argv[1], 'wb').write(b'P6\n%d %d\n255\n' % (w, h) + rows)
PY
convert "$work/pictures/board.ppm" BMP3:"$work/pictures/board.bmp"
rm "$work/pictures/board.ppm"

QT_SCALE_FACTOR=2 "$vimora" "$work/pictures/board.bmp" &
pid=$!

# The board, exact, somewhere on the screen: 0 found, 1 not (yet).
find_board() {
    import -window root -depth 8 ppm:"$work/screen.ppm" 2>/dev/null || return 1
    python3 - "$(dirname "$0")" "$work/screen.ppm" <<'PY'
import sys
sys.path.insert(0, sys.argv[1])
from screenshot import read_ppm
width, height, screen = read_ppm(sys.argv[2])
pixels = bytes(screen)
blue, red = b'\x00\x00\xff', b'\xff\x00\x00'
row = lambda y: b''.join(blue if (x + y) % 2 == 0 else red for x in range(96))
first = row(0)
stride = width * 3
found = pixels.find(first)
while found >= 0:
    if found % 3 == 0 and (found % stride) + len(first) <= stride:
        if all(pixels[found + y * stride:found + y * stride + len(first)] == row(y) for y in range(72)):
            print('board at', (found % stride) // 3, found // stride)
            sys.exit(0)
    found = pixels.find(first, found + 1)
sys.exit(1)
PY
}

shown=""
for _ in $(seq 1 100); do
    if window=$(xdotool search --pid "$pid" --name " board.bmp  - Vimora " 2>/dev/null | head -n1) && [[ -n "$window" ]]; then
        shown=1
        if find_board; then
            # And the window, 3/4 of the work area at first start, lies within the screen.
            eval "$(xdotool getwindowgeometry --shell "$window")"
            if (( X + WIDTH > 2560 || Y + HEIGHT > 1600 )); then
                echo "the window (${WIDTH} x ${HEIGHT} at ${X}, ${Y}) reaches past the 2560 x 1600 screen" >&2
                exit 1
            fi
            echo "window ${WIDTH} x ${HEIGHT} at ${X}, ${Y}"
            exit 0
        fi
    fi
    sleep 0.2
done
if [[ -z "$shown" ]]; then
    echo "the window never showed board.bmp" >&2
else
    cp "$work/screen.ppm" /tmp/vimora-sharp-at-scale-two.ppm 2>/dev/null || true
    echo "no one-pixel checkerboard of 96 x 72 screen pixels: the picture is scaled (screenshot in /tmp/vimora-sharp-at-scale-two.ppm)" >&2
fi
exit 1
