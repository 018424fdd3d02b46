#!/usr/bin/env bash
# Each file command of the main window as a user gives it, by key, in a real
# X server; read from the title, the windows' texts and the files on disk.
set -euo pipefail
source "$(dirname "$0")/journey.sh"
begin_journeys "$@"

pictures=$work/pictures
mkdir -p "$pictures" "$work/elsewhere"
convert -size 320x240 xc:orange "$pictures/a.jpg"
convert -size 200x100 xc:blue "$pictures/b.jpg"
convert -size 100x50 xc:green "$pictures/c.jpg"
trash=$XDG_DATA_HOME/Trash/files

count_in() { find "$1" -maxdepth 1 -type f | wc -l; }

# Guards: Make a Copy lost or changed bytes, or wrote nowhere.
# Expect: Alt+C brings up "Make a Copy of current file "; Enter takes the
# proposed name; a fourth file appears in the folder, equal to a.jpg.
make_a_copy_writes_an_equal_file() {
    press alt+c
    wait_title "Make a Copy of current file " "Alt+C"
    press Return
    wait_for "a copy in the folder" test "$(count_in "$pictures")" -eq 4
    local copy
    copy=$(find "$pictures" -maxdepth 1 -type f ! -name a.jpg ! -name b.jpg ! -name c.jpg)
    cmp -s "$copy" "$pictures/a.jpg" || { echo "${FUNCNAME[0]}: $copy differs from a.jpg" >&2; exit 1; }
    rm "$copy"
    echo "${FUNCNAME[0]}: $(basename "$copy") equals a.jpg"
}

# Guards: a rename that lost the file or left the title on the old name.
# Expect: Alt+N opens the rename box with the name; a new name and Enter
# rename the file on disk, and the title shows the new name.
renaming_with_the_rename_box() {
    press alt+n
    wait_text $'text\ta.jpg' "Alt+N"
    press ctrl+a
    xdotool type --delay 20 "renamed.jpg"
    press Return
    wait_title " renamed.jpg  - Vimora " "the new name and Enter"
    [[ -f "$pictures/renamed.jpg" && ! -e "$pictures/a.jpg" ]]
    echo "${FUNCNAME[0]}: a.jpg is renamed.jpg"
}

# Guards: undo that did not bring a renamed file back.
# Expect: Ctrl+Z gives a.jpg its name again, on disk and in the title.
undo_puts_the_name_back() {
    press ctrl+z
    wait_for "a.jpg back" test -f "$pictures/a.jpg"
    wait_title " a.jpg  - Vimora " "Ctrl+Z"
    echo "${FUNCNAME[0]}: renamed.jpg is a.jpg again"
}

# Guards: No still deleting, Yes not reaching the Trash.
# Expect: Delete asks; No leaves a.jpg; Delete and Yes move it to the Trash
# and the next picture is shown; Ctrl+Z brings it back from the Trash and
# shows it again.
deleting_to_the_trash_answered_no_then_yes_then_undone() {
    press Delete
    click_on $'button\tNo'
    wait_title " a.jpg  - Vimora " "Delete, No"
    [[ -f "$pictures/a.jpg" ]] || { echo "${FUNCNAME[0]}: No deleted the file" >&2; exit 1; }
    press Delete
    click_on $'button\tYes'
    wait_for "a.jpg in the Trash" test -f "$trash/a.jpg"
    [[ ! -e "$pictures/a.jpg" ]]
    wait_title " b.jpg  - Vimora " "Delete, Yes"
    press ctrl+z
    wait_for "a.jpg back from the Trash" test -f "$pictures/a.jpg"
    [[ ! -e "$trash/a.jpg" ]]
    wait_title " a.jpg  - Vimora " "Ctrl+Z after Delete"
    echo "${FUNCNAME[0]}: No kept it, Yes trashed it, Ctrl+Z restored it"
}

# Guards: file information that showed another file or nothing.
# Expect: Alt+I shows a window whose texts name a.jpg's pixel size.
file_info_names_the_file() {
    local before
    before=$(screen_text | grep -c '320 x 240' || true)
    press alt+i
    wait_for "the pixel size in a new window" \
        bash -c "source '$(dirname "$0")/session.sh'; [[ \$(screen_text | grep -c '320 x 240') -gt $before ]]"
    press Escape
    echo "${FUNCNAME[0]}: a.jpg's 320 x 240 shown"
}

# Guards: a move that copied without removing, or lost the file.
# Expect: Alt+M asks for a folder; the typed folder and Enter move a.jpg
# there; the main window goes on to another picture.
moving_to_another_folder() {
    xdotool windowactivate --sync "$main_window" 2>/dev/null || true
    wait_title " a.jpg  - Vimora " "before Alt+M"
    press alt+m
    wait_for "a folder dialog" bash -c "[[ \$(xdotool search --onlyvisible --pid $pid --name . | wc -l) -ge 2 ]]"
    press ctrl+a
    xdotool type --delay 20 "$work/elsewhere"
    press Return
    wait_for "a.jpg in the other folder" test -f "$work/elsewhere/a.jpg"
    [[ ! -e "$pictures/a.jpg" ]]
    wait_title " b.jpg  - Vimora " "after the move"
    echo "${FUNCNAME[0]}: a.jpg moved"
}

start_vimora " a.jpg  - Vimora " "$pictures/a.jpg"
make_a_copy_writes_an_equal_file
renaming_with_the_rename_box
undo_puts_the_name_back
deleting_to_the_trash_answered_no_then_yes_then_undone
file_info_names_the_file
moving_to_another_folder
close_vimora
