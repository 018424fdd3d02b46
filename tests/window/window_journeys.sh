#!/usr/bin/env bash
# Journeys through the main window in a real X server with a window manager:
# the program is driven by xdotool as a user drives it and read by its
# window titles, sizes and visibility.
set -euo pipefail
source "$(dirname "$0")/journey.sh"
begin_journeys "$@"
orange_pictures "$work/pictures" a b

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

start() { start_vimora " a.jpg  - Vimora " "$work/pictures/a.jpg"; }

# Guards: double-click on the window's background opened nothing.
double_click_on_the_background_opens_full_screen() {
    start
    eval "$(xdotool getwindowgeometry --shell "$main_window")"
    # Left of the picture, halfway down: the window's own background.
    xdotool mousemove --window "$main_window" 6 $((HEIGHT / 2)) click --repeat 2 --delay 80 1
    wait_full_screen "${FUNCNAME[0]}"
    echo "${FUNCNAME[0]}: the full-screen view came up"
    stop_vimora
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
    stop_vimora
}

double_click_on_the_background_opens_full_screen
minimising_takes_the_index_along_and_restoring_brings_it_back
