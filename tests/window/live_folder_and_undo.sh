#!/usr/bin/env bash
# The shown folder changed by other programs (cp, rm, mv in a shell) reaches
# the window's count by itself; then a picture deleted with Delete and Yes
# comes back with Ctrl+Z. Read as a screen reader reads the window.
set -euo pipefail
vimora=$(realpath "$1")

source "$(dirname "$0")/session.sh"
in_xvfb 1280x1024 "$0" "$vimora"

fresh_home
mkdir -p "$work/pictures"
for name in a b c; do convert -size 320x240 xc:orange "$work/pictures/$name.jpg"; done
convert -size 320x240 xc:teal "$work/elsewhere.jpg"
start_window_manager

"$vimora" "$work/pictures/a.jpg" &
pid=$!
wait_text $'window\t a.jpg  - Vimora ' "start"
wait_text $'label\t 1/3 ' "start"
window=$(xdotool search --pid "$pid" --name " a.jpg  - Vimora " | head -n1)
xdotool windowactivate --sync "$window" 2>/dev/null || true

# Another program's writes: the shown picture stays, its place follows.
cp "$work/elsewhere.jpg" "$work/pictures/0 new.jpg"
wait_text $'label\t 2/4 ' "cp of a file sorted before the shown one"
rm "$work/pictures/c.jpg"
wait_text $'label\t 2/3 ' "rm of another file"
mv "$work/pictures/b.jpg" "$work/pictures/1 renamed.jpg"
wait_text $'label\t 3/3 ' "mv of another file to a name sorted first"
wait_text $'window\t a.jpg  - Vimora ' "the changes around it"
echo "cp, rm and mv by another program reached the count; a.jpg stayed shown"

# Delete asks; Alt+Y answers Yes. The next picture takes its place.
xdotool key --window "$window" --clearmodifiers Delete
wait_text $'button\tYes' "Delete"
xdotool key alt+y
wait_text $'window\t 1 renamed.jpg  - Vimora ' "Delete, Yes"
wait_text $'label\t 2/2 ' "Delete, Yes"
[[ ! -e "$work/pictures/a.jpg" && -e "$XDG_DATA_HOME/Trash/files/a.jpg" ]] \
    || { echo "Delete, Yes: a.jpg was not moved to the trash" >&2; exit 1; }

xdotool windowactivate --sync "$window" 2>/dev/null || true
xdotool key --window "$window" --clearmodifiers ctrl+z
wait_text $'window\t a.jpg  - Vimora ' "Ctrl+Z"
wait_text $'label\t 3/3 ' "Ctrl+Z"
[[ -e "$work/pictures/a.jpg" && ! -e "$XDG_DATA_HOME/Trash/files/a.jpg" ]] \
    || { echo "Ctrl+Z: a.jpg is not back in its folder" >&2; exit 1; }
echo "Delete, Yes moved a.jpg to the trash; Ctrl+Z brought it back in its place"
