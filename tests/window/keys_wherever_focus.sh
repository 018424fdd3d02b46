#!/usr/bin/env bash
# Starts the built program on a folder of three pictures in a real X server
# and, with the focus moved by Tab from control to control as a user would,
# presses keys of the main window's table and checks what the window shows.
set -euo pipefail
vimora=$1

if [[ -z "${VIMORA_IN_XVFB:-}" ]]; then
    export VIMORA_IN_XVFB=1
    unset QT_QPA_PLATFORM
    exec xvfb-run -a -s "-screen 0 1280x1024x24" bash "$0" "$vimora"
fi

work=$(mktemp -d)
trap 'kill "${pid:-0}" "${wm:-0}" 2>/dev/null || true; rm -rf "$work"' EXIT
mkdir -p "$work/home/config/Vimora" "$work/pictures/sub"
for name in a b c sub/d; do convert -size 640x480 xc:orange "$work/pictures/$name.jpg"; done
export HOME="$work/home" XDG_CONFIG_HOME="$work/home/config" XDG_DATA_HOME="$work/home/data" \
       XDG_CACHE_HOME="$work/home/cache"
printf '[UserDef]\nLanguage=EN\n' > "$XDG_CONFIG_HOME/Vimora/Vimora.ini"
if command -v openbox >/dev/null; then
    openbox & wm=$!
fi

"$vimora" "$work/pictures/a.jpg" &
pid=$!

# Waits for the main window's title, as a user waits to see it.
main_window=""
wait_title() {
    local expected=$1 title=""
    for _ in $(seq 1 150); do
        for window in $(xdotool search --pid "$pid" --name "Vimora" 2>/dev/null || true); do
            title=$(xdotool getwindowname "$window" 2>/dev/null || true)
            if [[ "$title" == "$expected" ]]; then
                main_window=$window
                return 0
            fi
        done
        sleep 0.1
    done
    echo "after '$2': window title was '${title:-none}', expected '$expected'" >&2
    exit 1
}

press() {
    xdotool key --window "$main_window" --clearmodifiers "$1" 2>/dev/null || xdotool key "$1"
}

wait_title " a.jpg  - Vimora " "start"
xdotool windowactivate --sync "$main_window" 2>/dev/null || xdotool windowfocus --sync "$main_window"

# The first key of a new user, then the same from every control Tab reaches:
# the drive list, the path box, the folder tree, the filter, the check
# boxes, the slider, the seconds box and the buttons.
for stop in $(seq 0 16); do
    press Down
    wait_title " b.jpg  - Vimora " "Down with the focus at stop $stop"
    press Page_Down
    wait_title " c.jpg  - Vimora " "PageDown with the focus at stop $stop"
    press Up
    wait_title " b.jpg  - Vimora " "Up with the focus at stop $stop"
    press Page_Up
    wait_title " a.jpg  - Vimora " "PageUp with the focus at stop $stop"
    press Tab
done
echo "Down, PageDown, Up and PageUp showed the files from 17 focus stops"

# The path box keeps what is typed into it, and Enter opens the folder typed.
press F4
press End
xdotool type --delay 30 "/sub"
press Return
wait_title " d.jpg  - Vimora " "typing /sub into the path box and Enter"
echo "the path box took the typing and Enter opened the folder"

# Alt+T opens the thumbnail index beside the main window.
press alt+t
for _ in $(seq 1 100); do
    count=$(xdotool search --onlyvisible --pid "$pid" --name "." 2>/dev/null | wc -l)
    [[ $count -ge 2 ]] && { echo "Alt+T opened a second window"; exit 0; }
    sleep 0.1
done
echo "Alt+T opened no window" >&2
exit 1
