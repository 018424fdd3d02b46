#!/usr/bin/env bash
# Journeys through the thumbnail index and the full-screen view in a real
# X server with a window manager: pages of thumbnails, movie cells, opening
# a cell, and the full-screen popup with its save dialog. Read through the
# windows' texts as a screen reader reads them, titles and files on disk.
set -euo pipefail
source "$(dirname "$0")/journey.sh"
begin_journeys "$@"

# Thirty pictures and two clips: a page of 24, then one of 6 and the movies.
folder="$work/folder"
mkdir -p "$folder"
for i in $(seq 1 30); do
    convert -size 64x48 xc:"rgb($((i * 8)),100,50)" "$folder/p$(printf %02d "$i").png"
done
ffmpeg -loglevel error -f lavfi -i testsrc=duration=20:size=160x120:rate=25 -pix_fmt yuv420p "$folder/q_long.mpg"
ffmpeg -loglevel error -f lavfi -i testsrc=duration=7:size=160x120:rate=25 "$folder/q_short.avi"

# Whether screen_text shows that line now.
on_screen() { screen_text | grep -qxF -- "$1"; }

# Waits until that line has left the screen.
wait_gone() {
    local line=$1 what=$2
    for _ in $(seq 1 100); do
        on_screen "$line" || return 0
        sleep 0.1
    done
    echo "after '$what': '$line' stayed on the screen" >&2
    exit 1
}

# Moves the pointer onto the thumbnail above that name label.
point_at_cell() {
    local at
    at=$(/usr/bin/python3 "$(dirname "$0")/screen_text.py" --at $'label\t'"$1" Vimora 2>/dev/null)
    [[ -n "$at" ]] || { echo "no cell named $1 on the screen" >&2; screen_text >&2; exit 1; }
    # shellcheck disable=SC2086
    set -- $at
    xdotool mousemove --sync "$1" $(($2 - 35))
}

# Guards: Alt+T opens the index on the folder; the paging buttons show the
# second page (six pictures and the two movies) and the first again; each
# movie cell tells its duration when pointed at.
paging_the_index_and_reading_movie_durations() {
    start_vimora " p01.png  - Vimora " "$folder/p01.png"
    press alt+t
    wait_title " $folder" "Alt+T"
    wait_text $'label\tp24.png' "Alt+T"
    on_screen $'label\tp25.png' && { echo "page 1 shows p25.png" >&2; exit 1; }
    click_on $'button\tNext page'
    wait_text $'label\tq_short.avi' "Next page"
    wait_text $'label\tp25.png' "Next page"
    wait_gone $'label\tp24.png' "Next page"
    point_at_cell q_long.mpg
    wait_match window '^ q_long\.mpg  \(19"\)  [0-9]+ K $' "pointing at the long movie" >/dev/null
    point_at_cell q_short.avi
    wait_match window '^ q_short\.avi  \(0[67]"\)  [0-9]+ K $' "pointing at the short movie" >/dev/null
    click_on $'button\tPrevious page'
    wait_text $'label\tp24.png' "Previous page"
    wait_gone $'label\tq_short.avi' "Previous page"

    echo "${FUNCNAME[0]}: two pages, the movie cells told 19\" and 07\""
    stop_vimora
}

# Guards: a double click on a thumbnail shows that file in the main window.
double_click_on_a_thumbnail_shows_it() {
    start_vimora " p01.png  - Vimora " "$folder/p01.png"
    press alt+t
    wait_text $'label\tp07.png' "Alt+T"
    point_at_cell p07.png
    xdotool click --repeat 2 --delay 80 1
    wait_title " p07.png  - Vimora " "a double click on p07.png"
    wait_text $'label\t 7/32 ' "a double click on p07.png"
    echo "${FUNCNAME[0]}: p07.png came up 7/32 in the main window"
    stop_vimora
}

# Guards: full screen's "Save as" showed the main window's title; its
# dialog must come up in front of the full-screen view, save the copy, and
# leave the view's keys working; the popup's first entry gives the main
# window back.
saving_from_the_full_screen_popup() {
    start_vimora " p01.png  - Vimora " "$folder/p01.png"
    eval "$(xdotool getwindowgeometry --shell "$main_window")"
    xdotool mousemove --window "$main_window" $((WIDTH / 2)) $((HEIGHT / 2)) click --repeat 2 --delay 80 1
    wait_full_screen "a double click on the picture"
    # The popup's last entries: ..., Save as, Wallpaper, Restore.
    open_popup_at 200 200
    press Up Up Up Return
    wait_title "Select destination path for file copy " "Save as in the full-screen popup"
    [[ "$(xdotool getactivewindow getwindowname)" == "Select destination path for file copy " ]] \
        || { echo "the save dialog is not in front" >&2; exit 1; }
    wait_match text '^Copy of p01\.png$' "Save as in the full-screen popup" >/dev/null
    press Return
    for _ in $(seq 1 100); do
        [[ -f "$folder/Copy of p01.png" ]] && break
        sleep 0.1
    done
    cmp "$folder/p01.png" "$folder/Copy of p01.png" || { echo "the copy is not the picture" >&2; exit 1; }
    press Down
    wait_title " p02.png  - Vimora " "Down in full screen after saving"
    open_popup_at 200 200
    press Down Return
    wait_main_window_back "the popup's Restore"
    # "Copy of p01.png" lists first, before p01.png.
    wait_text $'label\t 3/33 ' "the popup's Restore"
    rm "$folder/Copy of p01.png"
    echo "${FUNCNAME[0]}: the save dialog came up in front, saved the copy, Down and Restore worked after it"
    stop_vimora
}

# The journeys named after the program, or all of them.
journeys=("${@:2}")
[[ ${#journeys[@]} -gt 0 ]] || journeys=(paging_the_index_and_reading_movie_durations double_click_on_a_thumbnail_shows_it saving_from_the_full_screen_popup)
for journey in "${journeys[@]}"; do "$journey"; done
