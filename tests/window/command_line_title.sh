#!/usr/bin/env bash
# Starts the built program in a real X server with a file on its command
# line, as a desktop entry or a shell would, and checks that the window
# title names that file.
set -euo pipefail
vimora=$(realpath "$1")

source "$(dirname "$0")/session.sh"
in_xvfb 1280x1024 "$0" "$vimora"

fresh_home
mkdir -p "$work/pictures, 2024/sub dir"
convert -size 64x48 xc:orange "$work/pictures, 2024/first photo.jpg"
convert -size 64x48 xc:teal "$work/pictures, 2024/second è.bmp"
convert -size 64x48 xc:navy "$work/pictures, 2024/sub dir/b.jpg"

# Waits for the title a user would read, then closes the program.
expect_title() {
    local expected=$1 journey=$2 title=""
    for _ in $(seq 1 100); do
        for window in $(xdotool search --pid "$pid" --name "Vimora" 2>/dev/null || true); do
            title=$(xdotool getwindowname "$window" 2>/dev/null || true)
            if [[ "$title" == "$expected" ]]; then
                echo "$journey: window title '$title'"
                kill "$pid"; wait "$pid" 2>/dev/null || true
                return 0
            fi
        done
        sleep 0.2
    done
    echo "$journey: window title was '${title:-none}', expected '$expected'" >&2
    exit 1
}

# The path goes as it would from a desktop entry: one argument, blanks and all.
opens_absolute_path_with_blanks() {
    "$vimora" "$work/pictures, 2024/second è.bmp" &
    pid=$!
    expect_title " second è.bmp  - Vimora " "${FUNCNAME[0]}"
}

# Typed in a shell in the parent folder: "vimora 'sub dir/b.jpg'".
opens_path_relative_to_parent_folder() {
    (cd "$work/pictures, 2024" && exec "$vimora" "sub dir/b.jpg") &
    pid=$!
    expect_title " b.jpg  - Vimora " "${FUNCNAME[0]}"
}

# Typed in a shell in the picture's own folder: "vimora 'first photo.jpg'".
opens_bare_name_in_its_own_folder() {
    (cd "$work/pictures, 2024" && exec "$vimora" "first photo.jpg") &
    pid=$!
    expect_title " first photo.jpg  - Vimora " "${FUNCNAME[0]}"
}

# A folder handed over by a file manager or typed as "vimora 'sub dir'":
# that folder is opened and its first picture shown.
opens_a_folder_and_shows_its_first_picture() {
    (cd "$work/pictures, 2024" && exec "$vimora" "sub dir") &
    pid=$!
    expect_title " b.jpg  - Vimora " "${FUNCNAME[0]}"
}

opens_absolute_path_with_blanks
opens_path_relative_to_parent_folder
opens_bare_name_in_its_own_folder
opens_a_folder_and_shows_its_first_picture
