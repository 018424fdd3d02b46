#!/usr/bin/env bash
# The output commands of the main window as a user gives them, in a real X
# server: clipboard, area save after a crop drag, print, wallpaper. Read
# from the clipboard (xclip), files on disk and what stand-ins on PATH for
# the desktop's programs were given.
set -euo pipefail
source "$(dirname "$0")/journey.sh"
begin_journeys "$@"

pictures=$work/pictures
mkdir -p "$pictures" "$work/bin"
convert -size 320x240 xc:orange "$pictures/a.jpg"
convert -size 200x100 xc:blue "$pictures/b.jpg"
# The desktop's wallpaper setter, recording what it is given.
cat > "$work/bin/gsettings" <<'STANDIN'
#!/bin/sh
echo "$*" >> "$WALLPAPER_LOG"
STANDIN
chmod +x "$work/bin/gsettings"
export PATH="$work/bin:$PATH" XDG_CURRENT_DESKTOP=GNOME WALLPAPER_LOG=$work/wallpaper.log

clipboard_size() { xclip -selection clipboard -t image/png -o 2>/dev/null | identify -format '%wx%h' - 2>/dev/null; }

# Guards: Ctrl+C putting nothing, or another picture, on the clipboard.
# Expect: the clipboard offers a PNG of a.jpg's 320 x 240 pixels.
copying_to_the_clipboard() {
    press ctrl+c
    wait_for "a 320x240 picture on the clipboard" test "$(clipboard_size)" = 320x240
    echo "${FUNCNAME[0]}: the clipboard holds 320x240"
}

# Guards: wallpaper commands that reached no setter or the wrong file.
# Expect: Alt+W has the desktop's setter (GNOME: gsettings) given a.jpg as
# the background; Alt+E has it clear the picture.
setting_and_removing_the_wallpaper() {
    press alt+w
    wait_for "gsettings given the picture" grep -qs "org.gnome.desktop.background picture-uri file://.*" "$WALLPAPER_LOG"
    grep "picture-uri " "$WALLPAPER_LOG" | grep -q "a.jpg\|\.bmp" \
        || { echo "${FUNCNAME[0]}: the setter got $(cat "$WALLPAPER_LOG")" >&2; exit 1; }
    press alt+e
    wait_for "gsettings told to show no picture" grep -qs "picture-options none" "$WALLPAPER_LOG"
    echo "${FUNCNAME[0]}: $(head -1 "$WALLPAPER_LOG")"
}


# Guards: an area save after a crop drag that wrote nothing or the whole
# picture.
# Expect: F6, a drag over the picture, a right click in it and the crop
# menu's first entry, "Save Area as",
# bring up "Save selected area to a file "; Enter writes a bitmap smaller
# than the picture, of the dragged size.
saving_a_dragged_area() {
    # Where the orange picture is on the screen, from a screenshot: WxH+X+Y
    # of its pixels above the status row (whose file icon is orange too).
    local box width height x y
    box=$(import -window root png:- | convert - -crop 1280x850+0+0 +repage -fuzz 10% -fill black +opaque orange \
          -format '%@' info:)
    IFS='x+' read -r width height x y <<<"$box"
    [[ $width -eq 320 && $height -eq 240 ]] || { echo "${FUNCNAME[0]}: the picture shows as $box" >&2; exit 1; }
    x=$((x + 110)) y=$((y + 100))
    find "$work" -name '*.bmp' -delete
    press F6
    xdotool mousemove --sync $((x - 50)) $((y - 40)) mousedown 1
    for step in 10 20 30 40 50 60 70 80 90 100; do
        xdotool mousemove --sync $((x - 50 + step)) $((y - 40 + step * 8 / 10))
    done
    xdotool mouseup 1
    xdotool mousemove --sync "$x" "$y" click 3
    # The crop menu's first entry.
    press Down Return
    wait_title "Save selected area to a file " "Save Area as"
    press Return
    # Read through a pipe: the name's "[a1]" would pick a frame.
    area_size() { find "$work" -name '*.bmp' -size +0 -exec sh -c 'identify -format %wx%h bmp:- < "$1"' _ {} \; 2>/dev/null; }
    area_written() { [[ -n "$(area_size)" ]]; }
    wait_for "a whole area bitmap" area_written
    local size
    size=$(area_size)
    # The drag was 100 x 80 screen pixels, one per picture pixel at 100%;
    # the last move may be missed or the ends counted in.
    local width=${size%x*} height=${size#*x}
    (( width >= 85 && width <= 101 && height >= 65 && height <= 81 )) \
        || { echo "${FUNCNAME[0]}: the area is $size, the drag 100x80" >&2; exit 1; }
    press Escape
    echo "${FUNCNAME[0]}: a $size bitmap written"
}

# Guards: printing that reached no printer and said nothing.
# Expect: Alt+P brings up the print dialog; where no printer exists it
# prints to a PDF file, and Enter writes one holding the picture.
printing_to_a_pdf_file() {
    xdotool windowactivate --sync "$main_window" 2>/dev/null || true
    press alt+p
    wait_title "Print" "Alt+P"
    xdotool windowactivate --sync "$found_window" 2>/dev/null || true
    click_on $'button\tPrint'
    wait_for "a PDF file" test -s "$HOME/print.pdf"
    wait_for "the whole PDF" grep -aq '%%EOF' "$HOME/print.pdf"
    grep -aq '/Subtype */Image' "$HOME/print.pdf" || { echo "${FUNCNAME[0]}: no picture in the PDF" >&2; exit 1; }
    echo "${FUNCNAME[0]}: print.pdf holds the picture"
}

start_vimora " a.jpg  - Vimora " "$pictures/a.jpg"
copying_to_the_clipboard
setting_and_removing_the_wallpaper
saving_a_dragged_area
printing_to_a_pdf_file
close_vimora
