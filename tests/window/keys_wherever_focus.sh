#!/usr/bin/env bash
# The main window's keys pressed as a user presses them, with the focus left
# on each control in turn (by Tab or a click): Down, PageUp, Space, Alt+T,
# Alt+G, F5 and Delete (answered No) must each do the window's command and
# nothing of the control's own, read from the title, the " n/3 " label and
# the windows that open. Then the movie player and its control bar, and the
# path box, the one text field that keeps its typing.
set -euo pipefail
source "$(dirname "$0")/journey.sh"
begin_journeys "$@"

mkdir -p "$work/pictures/sub" "$work/movie"
for name in a b c sub/d; do convert -size 640x480 xc:orange "$work/pictures/$name.jpg"; done

main_is_active() { [[ "$(xdotool getactivewindow 2>/dev/null)" == "$main_window" ]]; }

# After another window closed, the keyboard is the main window's again.
wait_main_active() {
    for _ in $(seq 1 100); do main_is_active && return 0; sleep 0.1; done
    echo "after '$1': the main window did not get the keyboard back" >&2
    exit 1
}

# Tabs on until the control with the focus is this one ("check box<TAB>Cycle").
tab_to() {
    for _ in $(seq 1 40); do
        screen_text | grep -q "^focus"$'\t'"$1" && return 0
        press Tab
    done
    echo "Tab never reached '$1'; focus: $(screen_text | grep '^focus')" >&2
    exit 1
}

# Each key of the table from wherever the focus was left ($1 says where),
# starting and ending on a.jpg.
keys_from() {
    local place=$1 name=$2
    press space
    shows b.jpg 2/3 "Space on $place"
    press Prior
    shows a.jpg 1/3 "PageUp on $place"
    press Down
    shows b.jpg 2/3 "Down on $place"
    press F5
    shows b.jpg 2/3 "F5 on $place"
    delete_answered_no b.jpg 2/3 "$place"
    favourites_and_back "$place"
    index_and_back "$place"
    press Prior
    shows a.jpg 1/3 "PageUp back on $place"
    # The control still has the focus: nothing was moved from it.
    screen_text | grep -q "^focus"$'\t'"$name" \
        || { echo "after the keys on $place the focus is on: $(screen_text | grep '^focus')" >&2; exit 1; }
    echo "Space, PageUp, Down, F5, Delete, Alt+G and Alt+T worked from $place"
}

delete_answered_no() { # file, position, place
    press Delete
    wait_text $'label\tMove this file to the Trash?' "Delete on $3"
    press Return # No is the default answer
    wait_no_text $'label\tMove this file to the Trash?' "answering No on $3"
    [[ -f "$work/pictures/$1" || -f "$work/movie/$1" ]] || { echo "Delete answered No removed $1" >&2; exit 1; }
    shows "$1" "$2" "answering No on $3"
    wait_main_active "answering No on $3"
}

favourites_and_back() {
    press alt+g
    wait_text $'window\tGlobal Operations' "Alt+G on $1"
    # It comes forward: Escape there closes it.
    press Escape
    wait_no_text $'window\tGlobal Operations' "Escape in the favourites window opened from $1"
    wait_main_active "closing the favourites window opened from $1"
}

index_and_back() {
    press alt+t
    wait_text $'window\t '"$folder" "Alt+T on $1"
    press alt+F4
    wait_no_text $'window\t '"$folder" "closing the index opened from $1"
    wait_main_active "closing the index opened from $1"
}

folder=$work/pictures
start_vimora " a.jpg  - Vimora " "$folder/a.jpg"
shows a.jpg 1/3 "start"

# Right after start the focus is on the drive list: Down there was the
# first key of a new user.
keys_from "the drive list after start" $'combo box\t/'
wait_text $'combo\t/' "the keys on the drive list"
tab_to $'tree\tFolders'
keys_from "the folder tree" $'tree\tFolders'
wait_text $'text\t'"$folder" "the keys on the folder tree"
tab_to $'combo box\tAll Supported'
keys_from "the type filter" $'combo box\tAll Supported'
tab_to $'check box\tCycle'
keys_from "the Cycle check box" $'check box\tCycle'
wait_text $'check\tCycle' "the keys on the Cycle check box"
tab_to $'push button\tRefresh'
keys_from "the Refresh button" $'push button\tRefresh'
# The slider takes no focus: a click on it gives it to the window itself.
click_inside "scroll bar:Slideshow interval"
keys_from "a click on the slideshow slider" $'filler\t a.jpg  - Vimora '

# The path box keeps typing, Backspace and Delete; Enter opens what was typed.
press F4
press End
xdotool type --delay 30 "/subx"
wait_text $'text\t'"$folder/subx" "typing into the path box"
press BackSpace
press Delete
press Left
press Right
wait_text $'text\t'"$folder/sub" "Backspace in the path box"
shows a.jpg 1/3 "typing into the path box"
press Return
shows d.jpg 1/1 "Enter in the path box"
echo "the path box kept its typing and Enter opened the folder typed"
stop_vimora

# A movie: the player and its control bar, clicked, give the keys back to
# the window too. Space there plays and pauses instead of stepping on.
if ! command -v ffmpeg >/dev/null; then
    echo "ffmpeg is not installed: no movie to click" >&2
    exit 0
fi
folder=$work/movie
convert -size 640x480 xc:orange "$folder/a.jpg"
convert -size 640x480 xc:orange "$folder/z.jpg"
ffmpeg -loglevel error -f lavfi -i testsrc=duration=20:size=176x144:rate=10 -c:v mpeg4 "$folder/m.avi"
start_vimora " m.avi  - Vimora " "$folder/m.avi"
shows m.avi 2/3 "start on the movie"
# Movies wait to be played.
click_inside "check box:Play Movie"

# Clicks a place of the player with the movie on show.
on_movie() { # where ("the player" or "the control bar"), how it is clicked
    shows m.avi 2/3 "before the keys on $1"
    shift
    click_inside "$@"
}
for place in player bar; do
    if [[ $place == player ]]; then where=(filler:Movie); else where=(filler:Movie slider:); fi
    on_movie "the $place" "${where[@]}"
    press Down
    shows z.jpg 3/3 "Down on the movie's $place"
    press Prior
    on_movie "the $place" "${where[@]}"
    press Prior
    shows a.jpg 1/3 "PageUp on the movie's $place"
    press Down
    on_movie "the $place" "${where[@]}"
    press F5
    shows m.avi 2/3 "F5 on the movie's $place"
    on_movie "the $place" "${where[@]}"
    delete_answered_no m.avi 2/3 "the movie's $place"
    on_movie "the $place" "${where[@]}"
    favourites_and_back "the movie's $place"
    on_movie "the $place" "${where[@]}"
    index_and_back "the movie's $place"
    echo "Down, PageUp, F5, Delete, Alt+G and Alt+T worked from the movie's $place"
done
shows m.avi 2/3 "before Space on the movie player"
click_inside "filler:Movie" "push button:Stop"
wait_text $'button\tPlay' "Stop on the control bar"
click_inside "filler:Movie"
press space
wait_text $'button\tPause' "Space on the movie player"
press space
wait_text $'button\tPlay' "Space again on the movie player"
shows m.avi 2/3 "Space on the movie player"
echo "Space on the movie player played and paused the movie"
