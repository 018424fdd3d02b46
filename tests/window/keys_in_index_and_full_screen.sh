#!/usr/bin/env bash
# The keys of the thumbnail index, the full-screen view and the favourites
# window, pressed as a user presses them in each window: they page the main
# window's list (title and " n/3 "), act on the thumbnail last touched and
# open or close windows.
set -euo pipefail
vimora=$(realpath "$1")

source "$(dirname "$0")/session.sh"
in_xvfb 1280x1024 "$0" "$vimora"

fresh_home
folder=$work/pictures
mkdir -p "$folder"
for name in a b c; do convert -size 640x480 xc:orange "$folder/$name.jpg"; done
start_window_manager

shows() { # file, position, after what
    wait_text $'window\t '"$1"'  - Vimora ' "$3"
    wait_text $'label\t '"$2"' ' "$3"
}

key() { xdotool key "$1"; }

# The main window hides behind the full-screen view; its title, as a task
# list shows it, still names the file.
titled() { # file, after what
    local title=""
    for _ in $(seq 1 100); do
        title=$(xdotool getwindowname "$main_window" 2>/dev/null || true)
        [[ "$title" == " $1  - Vimora " ]] && return 0
        sleep 0.1
    done
    echo "after '$2': the main window's title was '$title'" >&2
    exit 1
}

"$vimora" "$folder/a.jpg" &
pid=$!
shows a.jpg 1/3 "start"
main_window=$(xdotool search --pid "$pid" --name "a.jpg  - Vimora" | head -1)
xdotool windowactivate --sync "$main_window" 2>/dev/null || true

full_screen_keys() {
    eval "$(xdotool getwindowgeometry --shell "$main_window")"
    xdotool mousemove --window "$main_window" $((WIDTH / 2)) $((HEIGHT / 2)) click --repeat 2 --delay 80 1
    wait_text $'window\t' "a double click on the picture"
    key space
    titled b.jpg "Space in full screen"
    key Down
    titled c.jpg "Down in full screen"
    key Up
    titled b.jpg "Up in full screen"
    key Prior
    titled a.jpg "PageUp in full screen"
    key Next
    titled b.jpg "PageDown in full screen"
    wait_text $'window\t' "paging in full screen" # still full screen
    key Escape
    wait_no_text $'window\t' "Escape in full screen"
    wait_text $'focus\tpush button\tVimora' "Escape in full screen" # the hidden button
    shows b.jpg 2/3 "Escape in full screen"
    echo "full screen paged with Space, Down, Up, PageUp and PageDown, and Escape gave the main window back"
}

index_keys() {
    key alt+t
    wait_text $'window\t '"$folder" "Alt+T"
    wait_text $'label\tc.jpg' "the index's page"
    key Up
    shows a.jpg 1/3 "Up in the index"
    key Next
    shows b.jpg 2/3 "PageDown in the index"
    key Down
    shows c.jpg 3/3 "Down in the index"
    key Prior
    shows b.jpg 2/3 "PageUp in the index"
    key F5
    shows b.jpg 2/3 "F5 in the index"
    wait_text $'label\tc.jpg' "F5 in the index"
    # Keys act on the thumbnail last touched, not on the file on show.
    click_inside "label:c.jpg"
    key Delete
    wait_text "$folder/c.jpg" "Delete over c.jpg in the index"
    key Return # No is the default answer
    wait_no_text "$folder/c.jpg" "answering No in the index"
    [[ -f "$folder/c.jpg" ]] || { echo "Delete answered No in the index removed c.jpg" >&2; exit 1; }
    shows b.jpg 2/3 "answering No in the index"
    echo "the index paged the main window with Up, PageDown, Down and PageUp, refreshed with F5 and asked before deleting the thumbnail touched"
}

favourites_keys() {
    key alt+a # c.jpg, the thumbnail touched, goes on the list
    key alt+g
    wait_text $'window\tGlobal Operations' "Alt+G in the index"
    wait_text $'label\tSize of selected files : 4 K' "c.jpg added with Alt+A in the index"
    key Escape
    wait_no_text $'window\tGlobal Operations' "Escape in the favourites window"
    echo "Alt+A and Alt+G in the index listed the thumbnail touched, and Escape closed the list"
}

full_screen_keys
index_keys
favourites_keys
