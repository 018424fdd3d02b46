#!/usr/bin/env bash
# Journeys through the main window in a real X server with a window manager:
# the program is driven by xdotool as a user drives it and read by its
# window titles, sizes and visibility.
set -euo pipefail
vimora=$(realpath "$1")

source "$(dirname "$0")/session.sh"
in_xvfb 1280x1024 "$0" "$vimora"

fresh_home
mkdir -p "$work/pictures"
for name in a b; do convert -size 320x240 xc:orange "$work/pictures/$name.jpg"; done
start_window_manager

main_window=""
# Waits for a window of the program with that title.
wait_title() {
    local expected=$1 journey=$2 title=""
    for _ in $(seq 1 150); do
        for window in $(xdotool search --pid "$pid" --name "Vimora" 2>/dev/null || true); do
            title=$(xdotool getwindowname "$window" 2>/dev/null || true)
            [[ "$title" == "$expected" ]] && { main_window=$window; return 0; }
        done
        sleep 0.1
    done
    import -window root /tmp/wt17-fail.png 2>/dev/null || true
    echo "$journey: window title was '${title:-none}', expected '$expected'" >&2
    exit 1
}

visible_windows() { { xdotool search --onlyvisible --pid "$pid" --name "." 2>/dev/null || true; } | wc -l; }

# Waits until the program shows that many windows.
wait_windows() {
    local expected=$1 journey=$2 count=0
    for _ in $(seq 1 150); do
        count=$(visible_windows)
        [[ $count -eq $expected ]] && return 0
        sleep 0.1
    done
    for window in $(xdotool search --onlyvisible --pid "$pid" --name "." 2>/dev/null); do
        echo "  on screen: '$(xdotool getwindowname "$window")' $(xdotool getwindowgeometry "$window" | tail -1)" >&2
    done
    echo "$journey: $count windows on screen, expected $expected" >&2
    exit 1
}

# Waits for a visible window of the program as large as the screen.
wait_full_screen() {
    local journey=$1
    for _ in $(seq 1 150); do
        for window in $(xdotool search --onlyvisible --pid "$pid" --name "." 2>/dev/null || true); do
            xdotool getwindowgeometry "$window" 2>/dev/null | grep -q "Geometry: 1280x1024" && return 0
        done
        sleep 0.1
    done
    echo "$journey: no full-screen window came up" >&2
    exit 1
}

start() {
    "$vimora" "$work/pictures/a.jpg" &
    pid=$!
    wait_title " a.jpg  - Vimora " "start"
    xdotool windowactivate --sync "$main_window" 2>/dev/null || true
}

stop() {
    kill -0 "$pid" 2>/dev/null || { echo "the program ended by itself" >&2; exit 1; }
    kill "$pid"
    wait "$pid" 2>/dev/null || true
}

# Guards: double-click on the window's background opened nothing.
double_click_on_the_background_opens_full_screen() {
    start
    eval "$(xdotool getwindowgeometry --shell "$main_window")"
    # Left of the picture, halfway down: the window's own background.
    xdotool mousemove --window "$main_window" 6 $((HEIGHT / 2)) click --repeat 2 --delay 80 1
    wait_full_screen "${FUNCNAME[0]}"
    echo "${FUNCNAME[0]}: the full-screen view came up"
    stop
}

# Guards: minimising left the index on screen, restoring did not bring it back.
minimising_takes_the_index_along_and_restoring_brings_it_back() {
    start
    xdotool key --window "$main_window" alt+t
    wait_windows 2 "${FUNCNAME[0]}: Alt+T"
    xdotool windowminimize --sync "$main_window"
    wait_windows 0 "${FUNCNAME[0]}: minimised"
    xdotool windowmap --sync "$main_window"
    xdotool windowactivate --sync "$main_window" 2>/dev/null || true
    wait_windows 2 "${FUNCNAME[0]}: restored"
    echo "${FUNCNAME[0]}: the index went and came back with the main window"
    stop
}

double_click_on_the_background_opens_full_screen
minimising_takes_the_index_along_and_restoring_brings_it_back
