#!/usr/bin/env bash
# The keys of the thumbnail index, the full-screen view and the favourites
# window, pressed as a user presses them in each window: they page the main
# window's list (title and " n/3 "), act on the thumbnail last touched and
# open or close windows.
set -euo pipefail
source "$(dirname "$0")/journey.sh"
begin_journeys "$@"

folder=$work/pictures
mkdir -p "$folder"
for name in a b c; do convert -size 640x480 xc:orange "$folder/$name.jpg"; done

start_vimora " a.jpg  - Vimora " "$folder/a.jpg"
shows a.jpg 1/3 "start"

full_screen_keys() {
    eval "$(xdotool getwindowgeometry --shell "$main_window")"
    xdotool mousemove --window "$main_window" $((WIDTH / 2)) $((HEIGHT / 2)) click --repeat 2 --delay 80 1
    wait_text $'window\t' "a double click on the picture"
    press space
    wait_title " b.jpg  - Vimora " "Space in full screen"
    press Down
    wait_title " c.jpg  - Vimora " "Down in full screen"
    press Up
    wait_title " b.jpg  - Vimora " "Up in full screen"
    press Prior
    wait_title " a.jpg  - Vimora " "PageUp in full screen"
    press Next
    wait_title " b.jpg  - Vimora " "PageDown in full screen"
    wait_text $'window\t' "paging in full screen" # still full screen
    press Escape
    wait_no_text $'window\t' "Escape in full screen"
    wait_text $'focus\tpush button\tVimora' "Escape in full screen" # the hidden button
    shows b.jpg 2/3 "Escape in full screen"
    echo "full screen paged with Space, Down, Up, PageUp and PageDown, and Escape gave the main window back"
}

index_keys() {
    press alt+t
    wait_text $'window\t '"$folder" "Alt+T"
    wait_text $'label\tc.jpg' "the index's page"
    press Up
    shows a.jpg 1/3 "Up in the index"
    press Next
    shows b.jpg 2/3 "PageDown in the index"
    press Down
    shows c.jpg 3/3 "Down in the index"
    press Prior
    shows b.jpg 2/3 "PageUp in the index"
    press F5
    shows b.jpg 2/3 "F5 in the index"
    wait_text $'label\tc.jpg' "F5 in the index"
    # Keys act on the thumbnail last touched, not on the file on show.
    click_inside "label:c.jpg"
    press Delete
    wait_text "$folder/c.jpg" "Delete over c.jpg in the index"
    press Return # No is the default answer
    wait_no_text "$folder/c.jpg" "answering No in the index"
    [[ -f "$folder/c.jpg" ]] || { echo "Delete answered No in the index removed c.jpg" >&2; exit 1; }
    shows b.jpg 2/3 "answering No in the index"
    echo "the index paged the main window with Up, PageDown, Down and PageUp, refreshed with F5 and asked before deleting the thumbnail touched"
}

favourites_keys() {
    press alt+a # c.jpg, the thumbnail touched, goes on the list
    press alt+g
    wait_text $'window\tGlobal Operations' "Alt+G in the index"
    wait_text $'label\tSize of selected files : 4 K' "c.jpg added with Alt+A in the index"
    press Escape
    wait_no_text $'window\tGlobal Operations' "Escape in the favourites window"
    echo "Alt+A and Alt+G in the index listed the thumbnail touched, and Escape closed the list"
}

full_screen_keys
index_keys
favourites_keys
