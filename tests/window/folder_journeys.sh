#!/usr/bin/env bash
# Journeys through the folders in a real X server with a window manager:
# the path box with a folder that is missing, then there, and the parent
# folder button. Read through the windows' texts as a screen reader reads
# them and the window titles.
set -euo pipefail
source "$(dirname "$0")/journey.sh"
begin_journeys "$@"

pictures="$work/pictures"
mkdir -p "$pictures/sub"
orange_pictures "$pictures" a b sub/d

# Replaces the path box's text with that folder and presses Enter.
type_into_path_box() {
    press F4 End shift+Home
    xdotool type --delay 20 "$1"
    press Return
}

# Guards: a missing folder typed into the path box did nothing; it must ask
# Retry or Cancel, and Cancel must keep the folder shown before.
cancelling_a_missing_folder_keeps_the_previous_one() {
    start_vimora " b.jpg  - Vimora " "$pictures/b.jpg"
    type_into_path_box "$work/nowhere"
    wait_match label '^Error reading Drive ' "Enter on a missing folder" >/dev/null
    wait_text $'button\tRetry' "Enter on a missing folder"
    click_on $'button\tCancel'
    wait_text $'text\t'"$pictures" "Cancel"
    wait_title " b.jpg  - Vimora " "Cancel"
    wait_text $'label\t 2/2 ' "Cancel"
    echo "${FUNCNAME[0]}: Retry/Cancel asked, Cancel kept $pictures and b.jpg"
    stop_vimora
}

# Guards: Retry looks again, so a folder that has come meanwhile is listed.
retrying_once_the_folder_is_there_lists_it() {
    start_vimora " a.jpg  - Vimora " "$pictures/a.jpg"
    type_into_path_box "$work/later"
    wait_text $'button\tRetry' "Enter on a folder not there yet"
    mkdir "$work/later"
    convert -size 32x32 xc:navy "$work/later/z.png"
    click_on $'button\tRetry'
    wait_title " z.png  - Vimora " "Retry once the folder is there"
    wait_text $'text\t'"$work/later" "Retry once the folder is there"
    wait_text $'label\t 1/1 ' "Retry once the folder is there"
    echo "${FUNCNAME[0]}: Retry listed $work/later"
    stop_vimora
}

# Guards: the parent folder button lists the folder above and shows its
# first file; the path box follows.
the_parent_folder_button_goes_up() {
    start_vimora " d.jpg  - Vimora " "$pictures/sub/d.jpg"
    click_on $'button\tParent folder'
    wait_title " a.jpg  - Vimora " "Parent folder"
    wait_text $'text\t'"$pictures" "Parent folder"
    wait_text $'label\t 1/2 ' "Parent folder"
    echo "${FUNCNAME[0]}: the parent folder button listed $pictures"
    stop_vimora
}

# The journeys named after the program, or all of them.
journeys=("${@:2}")
[[ ${#journeys[@]} -gt 0 ]] || journeys=(cancelling_a_missing_folder_keeps_the_previous_one retrying_once_the_folder_is_there_lists_it the_parent_folder_button_goes_up)
for journey in "${journeys[@]}"; do "$journey"; done
