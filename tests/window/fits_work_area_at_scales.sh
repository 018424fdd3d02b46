#!/usr/bin/env bash
# On a 2560 x 1600 screen at scale factors 1, 1.5 and 2: the window lies
# within the screen at first start, and again after it was moved towards the
# bottom right, closed with Alt+F4 and started again.
set -euo pipefail
vimora=$(realpath "$1")

source "$(dirname "$0")/session.sh"
in_xvfb 2560x1600 "$0" "$vimora"

fresh_home
mkdir -p "$work/pictures"
convert -size 640x480 xc:orange "$work/pictures/a.jpg"
start_window_manager

window=""
start() {
    QT_SCALE_FACTOR=$1 "$vimora" "$work/pictures/a.jpg" &
    pid=$!
    for _ in $(seq 1 300); do
        window=$(xdotool search --pid "$pid" --name " a.jpg  - Vimora " 2>/dev/null | head -n1) || true
        [[ -n "$window" ]] && return 0
        sleep 0.1
    done
    echo "scale $1: the window never showed a.jpg" >&2
    exit 1
}

# Alt+F4 is the window manager's: one that could not open the display at
# once is started again.
window_manager() {
    kill -0 "$wm" 2>/dev/null && return 0
    start_window_manager
}

# The window within the screen, in screen pixels, once the window manager
# has placed it and Vimora has shortened it (within 5 s).
expect_on_screen() {
    local when=$1
    for _ in $(seq 1 50); do
        eval "$(xdotool getwindowgeometry --shell "$window")"
        if (( X >= 0 && Y >= 0 && X + WIDTH <= 2560 && Y + HEIGHT <= 1600 )); then
            echo "$when: ${WIDTH} x ${HEIGHT} at ${X}, ${Y}"
            return 0
        fi
        sleep 0.1
    done
    echo "$when: the window (${WIDTH} x ${HEIGHT} at ${X}, ${Y}) reaches past the 2560 x 1600 screen" >&2
    exit 1
}

close() {
    for _ in 1 2 3 4 5; do
        window_manager
        xdotool windowactivate --sync "$window" 2>/dev/null || true
        xdotool key alt+F4
        for _ in $(seq 1 50); do
            kill -0 "$pid" 2>/dev/null || { wait "$pid" 2>/dev/null || true; return 0; }
            sleep 0.1
        done
    done
    echo "Alt+F4 did not close the program" >&2
    exit 1
}

for scale in 1 1.5 2; do
    rm -f "$XDG_CONFIG_HOME/Vimora/Vimora.ini"
    printf '[UserDef]\nLanguage=EN\n' > "$XDG_CONFIG_HOME/Vimora/Vimora.ini"
    start "$scale"
    expect_on_screen "scale $scale, first start"
    xdotool windowmove --sync "$window" 1000 700 2>/dev/null || xdotool windowmove "$window" 1000 700
    close
    grep -q '^frmMainLeft=' "$XDG_CONFIG_HOME/Vimora/Vimora.ini" \
        || { echo "scale $scale: closing did not keep the window's place" >&2; exit 1; }
    start "$scale"
    expect_on_screen "scale $scale, started again after a move to 1000, 700 and Alt+F4"
    close
done
