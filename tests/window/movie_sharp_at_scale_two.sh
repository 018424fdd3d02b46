#!/usr/bin/env bash
# Starts the built program under a scale factor of 2 on a movie of one-pixel
# grey checks, shown at " 100% ", and looks in a screenshot for the checks
# with each video pixel on one screen pixel.
set -euo pipefail
vimora=$(realpath "$1")

source "$(dirname "$0")/session.sh"
in_xvfb 1600x1200 "$0" "$vimora"

fresh_home
mkdir -p "$work/movies"
# 96 x 72 checks, lossless, long enough to be caught on screen.
ffmpeg -v error -y -f lavfi -i "color=c=black:s=96x72:d=30:r=5,format=gray,geq=lum='255*mod(X+Y\,2)'" \
    -c:v ffv1 -f avi "$work/movies/board.avi"

QT_SCALE_FACTOR=2 "$vimora" "$work/movies/board.avi" &
pid=$!
wait_text $'label\t 100% ' "start on board.avi"

# The checks, exact to a grey level, somewhere on the screen: 0 found, 1 not (yet).
find_checks() {
    import -window root -depth 8 ppm:"$work/screen.ppm" 2>/dev/null || return 1
    python3 - "$(dirname "$0")" "$work/screen.ppm" <<'PY'
import sys
sys.path.insert(0, sys.argv[1])
from screenshot import read_ppm
width, height, screen = read_ppm(sys.argv[2])
grey = bytes(screen[::3])  # the red channel of each pixel: the checks are grey
dark = lambda v: v < 64
light = lambda v: v > 192
# The board's top-left check is dark: black, as the frame around it.
def checks_at(x, y):
    for dy in range(72):
        row = grey[(y + dy) * width + x:(y + dy) * width + x + 96]
        for dx, v in enumerate(row):
            if not (light(v) if (dx + dy) % 2 == 1 else dark(v)):
                return False
    return True
for y in range(height - 72):
    line = grey[y * width:(y + 1) * width]
    for x in range(1, width - 96):
        if light(line[x]) and dark(line[x + 1]) and light(line[x + 2]) and checks_at(x - 1, y):
            print('checks at', x - 1, y)
            sys.exit(0)
sys.exit(1)
PY
}

for _ in $(seq 1 25); do
    find_checks && exit 0
    sleep 0.2
done
cp "$work/screen.ppm" /tmp/vimora-movie-sharp-at-scale-two.ppm 2>/dev/null || true
echo "no one-pixel checks of 96 x 72 screen pixels: the movie is scaled" \
     "(screenshot in /tmp/vimora-movie-sharp-at-scale-two.ppm)" >&2
exit 1
