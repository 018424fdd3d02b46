#!/usr/bin/env bash
# Remakes the sample pictures and movies in resources/samples (needs
# imagemagick, ffmpeg, exiv2 and python3). Nothing is downloaded.
set -euo pipefail
cd "$(dirname "$0")/.."
out=resources/samples
mkdir -p "$out"

# Pictures.
convert -size 1600x1200 gradient:'#87ceeb'-'#1e3a6e' \
    -fill '#f4d35e' -draw 'circle 1200,300 1200,420' \
    -fill '#2e6b3a' -draw 'polygon 0,1200 0,820 380,560 760,900 1100,640 1600,980 1600,1200' \
    -fill '#3f8f4f' -draw 'polygon 0,1200 0,1000 500,820 900,1050 1600,900 1600,1200' \
    -quality 85 "$out/sample-photo.jpg"
# Stored on its side; the EXIF orientation tag turns it upright again.
convert -size 900x600 gradient:'#ffd6a5'-'#ff7b54' -fill '#333' -draw 'rectangle 380,80 520,520' \
    -fill '#fff' -draw 'circle 450,160 450,200' -rotate -90 -quality 85 "$out/sample-exif-turned.jpg"
exiv2 -q -M'set Exif.Image.Orientation 6' "$out/sample-exif-turned.jpg"
convert -size 320x240 plasma:'#c0392b'-'#f1c40f' -seed 7 BMP3:"$out/sample.bmp"
convert -size 320x240 xc:'#ecf0f1' -fill '#8e44ad' -draw 'rectangle 20,20 300,100' \
    -fill '#16a085' -draw 'circle 160,170 160,220' -colors 16 -type Palette -compress RLE \
    BMP3:"$out/sample-rle8.rle"
convert -delay 20 -size 120x120 \
    xc:'#2c3e50' -fill '#e67e22' -draw 'circle 30,60 30,80' \
    \( xc:'#2c3e50' -fill '#e67e22' -draw 'circle 60,60 60,80' \) \
    \( xc:'#2c3e50' -fill '#e67e22' -draw 'circle 90,60 90,80' \) \
    \( xc:'#2c3e50' -fill '#e67e22' -draw 'circle 60,60 60,80' \) \
    -loop 0 "$out/sample-animation.gif"
convert -size 256x256 xc:none -fill '#1f5fa8' -draw 'roundrectangle 16,32 240,224 24,24' \
    -fill '#eaf3fc' -draw 'rectangle 36,52 220,204' -fill '#d7453a' -draw 'polygon 104,88 104,168 168,128' \
    -define icon:auto-resize=48,32,16 "$out/sample.ico"
# A cursor is an icon file whose type field says 2.
convert -size 32x32 xc:none -fill black -draw 'polygon 2,2 2,26 9,19 14,30 18,28 13,17 22,17' \
    "$out/sample.ico.tmp.ico"
python3 - "$out/sample.ico.tmp.ico" "$out/sample.cur" <<'PY'
import sys
data = bytearray(open(sys.argv[1], 'rb').read())
data[2] = 2
open(sys.argv[2], 'wb').write(data)
PY
rm "$out/sample.ico.tmp.ico"
python3 scripts/make-sample-metafiles.py "$out"

# Movies: two seconds of a test pattern with a tone.
movie() {
    local file=$1; shift
    ffmpeg -loglevel error -y -f lavfi -i testsrc2=size=320x240:rate=25 -f lavfi -i sine=frequency=440 \
        -t 2 "$@" "$out/$file"
}
movie sample.avi -c:v mpeg4 -q:v 6 -c:a mp3 -b:a 64k
movie sample.mpg -c:v mpeg1video -b:v 600k -c:a mp2 -b:a 64k -f mpeg
movie sample.mov -c:v mjpeg -q:v 8 -c:a pcm_s16le -ar 22050
movie sample.asf -c:v wmv2 -b:v 400k -c:a wmav2 -b:a 64k -f asf
du -sh "$out"
