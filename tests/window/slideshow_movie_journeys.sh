#!/usr/bin/env bash
# Journeys through the slideshow and a movie in a real X server with a
# window manager, read through the status row and the player's time as a
# screen reader reads them, and the windows on screen.
set -euo pipefail
source "$(dirname "$0")/journey.sh"
begin_journeys "$@"

pictures="$work/pictures"
orange_pictures "$pictures" a b c

# Guards: the slideshow walks on by itself and loops past the last file;
# Space stops it, and the closing program keeps it stopped in the settings.
ticking_cycle_walks_the_folder_until_space_stops_it() {
    start_vimora " c.jpg  - Vimora " "$pictures/c.jpg"
    wait_text $'label\t 3/3 ' "start"
    click_on $'check\tCycle'
    # One tick of the 5 seconds a new user has loops to the first file.
    wait_title " a.jpg  - Vimora " "ticking Cycle"
    wait_text $'label\t 1/3 ' "the first tick"
    wait_text $'label\t 2/3 ' "the second tick"
    # The keys come in order: Space is done before the window closes.
    press space
    close_vimora
    grep -qx 'cicle=0' "$XDG_CONFIG_HOME/Vimora/Vimora.ini" \
        || { echo "after Space the slideshow was still on:" >&2; grep cicle "$XDG_CONFIG_HOME/Vimora/Vimora.ini" >&2; exit 1; }
    echo "${FUNCNAME[0]}: the slideshow looped 3/3, 1/3, 2/3 by itself and Space stopped it"
}

clip="$work/movies/clip.mpg"
mkdir -p "$work/movies"
ffmpeg -loglevel error -f lavfi -i testsrc=duration=20:size=320x240:rate=25 -pix_fmt yuv420p "$clip"

clock() { shown_text label '^[0-9]+:[0-9]{2} / 0:19$'; }

# Waits until the player's clock shows something other than that.
wait_clock_moves_from() {
    local from=$1 what=$2 now=""
    for _ in $(seq 1 100); do
        now=$(clock)
        [[ -n "$now" && "$now" != "$from" ]] && return 0
        sleep 0.1
    done
    echo "after '$what': the player's clock stayed at '$from'" >&2
    exit 1
}

# Fails when the clock moves once it has settled: a paused player's clock
# stands still, and no event tells that nothing happens, so it is watched
# for a second and a half.
expect_clock_stands() {
    local what=$1 before="" after=""
    for _ in $(seq 1 20); do
        before=$(clock)
        sleep 0.5
        after=$(clock)
        [[ "$after" == "$before" ]] && break
    done
    sleep 1.5
    after=$(clock)
    [[ "$after" == "$before" ]] || { echo "after '$what': the clock went on from '$before' to '$after'" >&2; exit 1; }
}

# Guards: a movie on the command line plays at once; Space pauses and
# resumes it, as does the control bar's button; fit and zoom reach the
# movie and the zoom label says so; a double click on it goes full screen,
# where Space still pauses, and Escape gives the main window back.
playing_pausing_and_full_screen_movie() {
    start_vimora " clip.mpg  - Vimora " "$clip"
    wait_clock_moves_from "0:00 / 0:19" "starting on a movie"
    press space
    expect_clock_stands "Space"
    local paused
    paused=$(clock)
    press space
    wait_clock_moves_from "$paused" "Space again"
    press space
    expect_clock_stands "Space a third time"
    paused=$(clock)
    # Paused, the control bar's first button offers to play.
    click_on $'button\tPlay'
    wait_clock_moves_from "$paused" "the control bar's play button"

    wait_text $'label\t 100% ' "a movie at full size"
    press alt+f
    wait_match label '^ [0-9]{3}% $' "Alt+F on a movie" >/dev/null
    press KP_Add
    wait_text $'label\t 115% ' "keypad + on a movie"

    eval "$(xdotool getwindowgeometry --shell "$main_window")"
    xdotool mousemove --window "$main_window" $((WIDTH / 2)) $((HEIGHT / 2)) click --repeat 2 --delay 80 1
    wait_full_screen "a double click on the movie"
    press space
    expect_clock_stands "Space in full screen"
    press Escape
    wait_main_window_back "Escape in the full-screen movie"
    wait_title " clip.mpg  - Vimora " "Escape in the full-screen movie"
    echo "${FUNCNAME[0]}: played, paused by Space and the bar, fitted, zoomed, full screen and back"
    stop_vimora
}

# The journeys named after the program, or all of them.
journeys=("${@:2}")
[[ ${#journeys[@]} -gt 0 ]] || journeys=(ticking_cycle_walks_the_folder_until_space_stops_it playing_pausing_and_full_screen_movie)
for journey in "${journeys[@]}"; do "$journey"; done
