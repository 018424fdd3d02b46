#!/usr/bin/env bash
# Journeys through the pictures of a folder in a real X server with a window
# manager: every picture type paged with the keys, the type filter, the zoom
# keys and buttons, and the fit after the window is resized and maximised.
# Read through the status row as a screen reader reads it, and screenshots.
set -euo pipefail
corpus=$(realpath "$(dirname "$0")/../corpus")
source "$(dirname "$0")/journey.sh"
begin_journeys "$@"

# One file of each picture type, named so that they list in this order,
# with the size each one truly has.
types="$work/types"
mkdir -p "$types"
picture_types=(
    "a_bitmap.bmp|libgdiplus/test.bmp|100 x 68"
    "b_photo.jpg|libjpeg-turbo/testorig.jpg|227 x 149"
    "c_animation.gif|libgdiplus/test.gif|100 x 68"
    "d_drawing.wmf|libwmf/ant.wmf|211 x 137"
    "e_icon.ico|libgdiplus/test3.ico|32 x 32"
    "f_drawing.emf|libgdiplus/test.emf|73 x 71"
    "g_pointer.cur|pillow-tests/deerstalker.cur|32 x 32"
    "h_runs.rle|pillow-tests/bmp/g/pal8rle.bmp|127 x 64"
    "i_lossless.png|pngsuite/basn2c08.png|32 x 32"
    "j_web.webp|pillow-tests-modern/webp/transparent.webp|200 x 150"
    "k_scan.tiff|image-tiff-tests/images/palette-1c-4b.tiff|157 x 151"
    "l_vector.svg|librsvg-tests/w3c-svg11/struct-use-01-t.svg|480 x 360"
    "m_av1.avif|libavif-tests/kodim03_yuv420_8bpc.avif|768 x 512"
    "n_phone.heic|libheif-tests/tests/rainbow-451x461.heic|451 x 461"
    "o_next.jxl|libjxl-conformance/grayscale.jxl|200 x 200"
    "p_camera.dng|imagemeta-raw/sample.dng|128 x 96"
)
for entry in "${picture_types[@]}"; do
    IFS='|' read -r name source _ <<<"$entry"
    cp "$corpus/$source" "$types/$name"
done
count=${#picture_types[@]}

# Guards: each type of the catalogue decodes and shows in the real window,
# with its place in the list, its name and its true size in the status row.
paging_shows_every_picture_type() {
    start_vimora " a_bitmap.bmp  - Vimora " "$types/a_bitmap.bmp"
    local n=0 colours
    for entry in "${picture_types[@]}"; do
        IFS='|' read -r name _ size <<<"$entry"
        n=$((n + 1))
        [[ $n -gt 1 ]] && press Down
        wait_title " $name  - Vimora " "Down to $name"
        wait_text $'label\t'" $n/$count " "Down to $name"
        wait_text $'label\t'"$name" "Down to $name"
        wait_match label "^ $size \\(" "Down to $name" >/dev/null
        # A blank picture area is one grey.
        colours=$(colours_in_middle_of "$main_window")
        [[ $colours -gt 8 ]] || { import -window root "$work/blank.png"; echo "$name: the picture area is blank ($colours colours)" >&2; exit 1; }
    done
    press Up
    wait_text $'label\t'" $((count - 1))/$count " "Up from the last picture"
    echo "${FUNCNAME[0]}: $count picture types shown with their names, places and sizes"
    stop_vimora
}

# Guards: the filter list as a user works it (click, arrow keys in its
# list, Enter) limits the folder's list to that type.
choosing_a_type_limits_the_list() {
    cp "$corpus/libjpeg-turbo/testimgint.jpg" "$types/q_second.jpeg"
    start_vimora " a_bitmap.bmp  - Vimora " "$types/a_bitmap.bmp"
    wait_text $'label\t'" 1/$((count + 1)) " "start"
    click_on $'combo\tAll Supported*'
    # All Supported, Image Files, Movies, then JPG,JPEG.
    press Down Down Down Return
    wait_title " b_photo.jpg  - Vimora " "choosing JPG,JPEG"
    wait_text $'label\t 1/2 ' "choosing JPG,JPEG"
    press Down
    wait_title " q_second.jpeg  - Vimora " "Down in the JPEG list"
    wait_text $'label\t 2/2 ' "Down in the JPEG list"
    rm "$types/q_second.jpeg"
    echo "${FUNCNAME[0]}: JPG,JPEG listed the two JPEG files only"
    stop_vimora
}

# A picture larger than the screen, in one colour found nowhere else.
big="$work/big"
mkdir -p "$big"
convert -size 2400x1800 xc:'rgb(250,120,0)' "$big/large.png"

# How wide the orange picture is on the screen, in pixels.
shown_width() {
    import -window root -depth 8 ppm:- 2>/dev/null | /usr/bin/python3 -c '
import sys
data = sys.stdin.buffer.read()
magic, size, maximum, pixels = data.split(b"\n", 3)
width, height = map(int, size.split())
# Colour management may move a channel by a step or two.
orange = lambda r, g, b: r > 240 and 110 < g < 130 and b < 10
widest = 0
for y in range(0, height, 8):
    row = pixels[y * width * 3:(y + 1) * width * 3]
    widest = max(widest, sum(1 for x in range(width) if orange(*row[3 * x:3 * x + 3])))
print(widest)'
}

# Waits until the zoom label says what is on screen: the shown width over
# the picture's 2400 pixels, within a percent. Prints the label.
wait_zoom_matches_screen() {
    local what=$1 label="" width=0
    for _ in $(seq 1 50); do
        label=$(shown_text label '^ +[0-9]+% $')
        width=$(shown_width)
        if [[ -n "$label" ]]; then
            local percent=${label//[ %]/} actual=$(((width * 100 + 1200) / 2400))
            [[ $((percent - actual)) -le 1 && $((actual - percent)) -le 1 ]] && { echo "$label"; return 0; }
        fi
        sleep 0.1
    done
    import -window root "$work/zoom.png"
    echo "after '$what': the zoom label says '$label' but the picture is $width of 2400 pixels wide" >&2
    exit 1
}

# Guards: the keypad's + and -, the Zoom buttons and the fit choice each
# change the zoom label, which always tells the size on screen.
zooming_with_keys_and_buttons() {
    start_vimora " large.png  - Vimora " "$big/large.png"
    click_on $'radio\tFit window'
    local fitted
    fitted=$(wait_zoom_matches_screen "Fit window")
    press KP_Add
    wait_text $'label\t 115% ' "keypad +"
    press KP_Add
    wait_text $'label\t 132% ' "keypad + twice"
    press KP_Subtract
    wait_text $'label\t 115% ' "keypad -"
    click_on $'button\tZoom -'
    wait_text $'label\t 100% ' "the Zoom - button"
    click_on $'button\tZoom -'
    wait_text $'label\t  87% ' "the Zoom - button twice"
    click_on $'button\tZoom +'
    wait_text $'label\t 100% ' "the Zoom + button"
    press alt+f
    wait_text $'label\t'"$fitted" "Alt+F"
    echo "${FUNCNAME[0]}: fit $fitted, keypad 115% 132% 115%, buttons 100% 87% 100%, Alt+F $fitted again"
    stop_vimora
}

# Guards: after a resize or a maximise the fitted picture was drawn anew
# but the zoom label kept the old percentage.
fit_follows_resizing_and_maximising() {
    start_vimora " large.png  - Vimora " "$big/large.png"
    click_on $'radio\tFit window'
    local before after maximised
    before=$(wait_zoom_matches_screen "Fit window")
    xdotool windowsize --sync "$main_window" 700 560
    after=$(wait_zoom_matches_screen "resizing to 700 x 560")
    [[ "$after" != "$before" ]] || { echo "the zoom label stayed '$before' at 700 x 560" >&2; exit 1; }
    # Double-click on the title bar, openbox's maximise.
    eval "$(xwininfo -id "$main_window" | awk '/Absolute upper-left X/ {print "left=" $4} /Absolute upper-left Y/ {print "top=" $4} /Width:/ {print "width=" $2}')"
    # shellcheck disable=SC2154
    xdotool mousemove --sync $((left + width / 2)) $((top - 8)) click --repeat 2 --delay 80 1
    for _ in $(seq 1 50); do
        [[ $(xwininfo -id "$main_window" | awk '/Width:/ {print $2}') -gt 1200 ]] && break
        sleep 0.1
    done
    maximised=$(wait_zoom_matches_screen "maximising")
    [[ "$maximised" != "$after" ]] || { echo "the zoom label stayed '$after' when maximised" >&2; exit 1; }
    echo "${FUNCNAME[0]}: fit $before, resized $after, maximised $maximised, each as on screen"
    stop_vimora
}

# The journeys named after the program, or all of them.
journeys=("${@:2}")
[[ ${#journeys[@]} -gt 0 ]] || journeys=(paging_shows_every_picture_type choosing_a_type_limits_the_list zooming_with_keys_and_buttons fit_follows_resizing_and_maximising)
for journey in "${journeys[@]}"; do "$journey"; done
