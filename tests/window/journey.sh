# What the journey scripts share, on top of session.sh: starting the
# program on a file, waiting for what a user waits for (a title, a window),
# pressing keys and clicking controls where the screen reader says they are,
# and looking at the screen.

source "$(dirname "${BASH_SOURCE[0]}")/session.sh"

# Starts a journey script with the program's path as its argument: the
# script runs again under an X server of its own, then gets a fresh home
# ($work) and openbox. Sets $vimora.
begin_journeys() {
    vimora=$(realpath "$1")
    in_xvfb 1280x1024 "$0" "$vimora"
    fresh_home
    start_window_manager
}

# Orange 320 x 240 JPEGs of these names (without ".jpg") in that folder.
orange_pictures() {
    local folder=$1 name
    shift
    mkdir -p "$folder"
    for name in "$@"; do convert -size 320x240 xc:orange "$folder/$name.jpg"; done
}

main_window=""

# Starts the program on that file (or with no argument) and waits for its
# main window with that title.
start_vimora() {
    local title=$1
    shift
    "$vimora" "$@" 2>"$work/vimora.log" &
    pid=$!
    wait_title "$title" "start"
    xdotool windowactivate --sync "$main_window" 2>/dev/null || true
}

stop_vimora() {
    kill -0 "$pid" 2>/dev/null || { echo "the program ended by itself" >&2; exit 1; }
    kill "$pid"
    wait "$pid" 2>/dev/null || true
    pid=""
}

# Closes the main window as a user does (openbox's Alt+F4) and waits for
# the program to end; asked again when the keys went to a window still
# being raised.
close_vimora() {
    kill -0 "$pid" 2>/dev/null || { echo "the program ended by itself" >&2; exit 1; }
    for _ in 1 2 3; do
        xdotool windowactivate --sync "$main_window" 2>/dev/null || true
        press alt+F4
        for _ in $(seq 1 50); do
            kill -0 "$pid" 2>/dev/null || { wait "$pid" 2>/dev/null || true; pid=""; return 0; }
            sleep 0.1
        done
    done
    echo "Alt+F4 did not end the program" >&2
    exit 1
}

# Waits for a window of the program with that title, shown or hidden (the
# main window behind full screen); it becomes $found_window, and
# $main_window too when it is the main window's.
found_window=""
wait_title() {
    local expected=$1 what=$2 title=""
    for _ in $(seq 1 300); do
        for window in $(xdotool search --pid "$pid" --name "." 2>/dev/null || true); do
            title=$(xdotool getwindowname "$window" 2>/dev/null || true)
            if [[ "$title" == "$expected" ]]; then
                found_window=$window
                [[ "$title" == *" - Vimora "* || "$title" == " Vimora" ]] && main_window=$window
                return 0
            fi
        done
        sleep 0.1
    done
    echo "after '$what': no window titled '$expected'; the screen showed:" >&2
    screen_text >&2
    kill -0 "$pid" 2>/dev/null || echo "the program had ended" >&2
    tail -5 "$work/vimora.log" >&2 2>/dev/null || true
    exit 1
}

# Title and position, as the window and its status row show them:
# shows b.jpg 2/3 "Down"
shows() {
    wait_text $'window\t '"$1"'  - Vimora ' "$3"
    wait_text $'label\t '"$2"' ' "$3"
}

# Waits until a command's test holds: wait_for "the copy" test -f "$file"
wait_for() {
    local what=$1
    shift
    for _ in $(seq 1 150); do "$@" && return 0; sleep 0.1; done
    echo "never came: $what" >&2
    screen_text >&2
    exit 1
}

# Whether screen_text shows that line now: control_shown $'list item\ta.jpg'
control_shown() { screen_text | grep -qxF -- "$1"; }

# The id of the shown window of the program whose title holds that text.
window_titled() {
    xdotool search --onlyvisible --pid "$pid" --name "$1" 2>/dev/null | head -1
}

# Waits for a shown window of the program as large as the 1280 x 1024
# screen; it becomes $full_screen.
full_screen=""
wait_full_screen() {
    local what=$1
    for _ in $(seq 1 100); do
        for window in $(xdotool search --onlyvisible --pid "$pid" --classname "." 2>/dev/null || true); do
            if xdotool getwindowgeometry "$window" 2>/dev/null | grep -q "Geometry: 1280x1024"; then
                full_screen=$window
                return 0
            fi
        done
        sleep 0.1
    done
    echo "after '$what': no full-screen window came up" >&2
    exit 1
}

# Whether that window is shown.
shown() { xdotool search --onlyvisible --pid "$pid" --classname "." 2>/dev/null | grep -qx "$1"; }

# Waits until the main window is shown again and the full-screen one gone.
wait_main_window_back() {
    local what=$1
    for _ in $(seq 1 100); do
        shown "$main_window" && ! shown "$full_screen" && return 0
        sleep 0.1
    done
    echo "after '$what': the full-screen view did not give the main window back" >&2
    exit 1
}

# Right-clicks there and waits for the popup to come up.
open_popup_at() {
    local before
    before=$(xdotool search --onlyvisible --pid "$pid" --classname "." 2>/dev/null | wc -l)
    xdotool mousemove --sync "$1" "$2" click 3
    for _ in $(seq 1 100); do
        [[ $(xdotool search --onlyvisible --pid "$pid" --classname "." 2>/dev/null | wc -l) -gt $before ]] && return 0
        sleep 0.1
    done
    echo "a right click at $1 $2 brought no popup" >&2
    exit 1
}

press() {
    xdotool key --clearmodifiers "$@"
}

# Clicks (or with "2", double-clicks) the control that screen_text shows
# as that line, where it is on the screen.
click_on() {
    local line=$1 clicks=${2:-1} at="" before=""
    # A window just shown may still be placed by the window manager: the
    # place must read the same twice.
    for _ in $(seq 1 100); do
        at=$(/usr/bin/python3 "$(dirname "${BASH_SOURCE[0]}")/screen_text.py" --at "$line" Vimora 2>/dev/null || true)
        [[ -n "$at" && "$at" == "$before" ]] && break
        before=$at
        sleep 0.1
    done
    [[ -n "$at" ]] || { echo "no '$line' on the screen to click; it showed:" >&2; screen_text >&2; exit 1; }
    # shellcheck disable=SC2086
    xdotool mousemove --sync $at click --repeat "$clicks" --delay 80 1
}

# The text of the first shown line of screen_text of that role whose text
# matches the pattern (a bash regular expression), or nothing.
shown_text() {
    local role=$1 pattern=$2 line
    while IFS= read -r line; do
        [[ "$line" == "$role"$'\t'* && "${line#*$'\t'}" =~ $pattern ]] && { printf '%s\n' "${line#*$'\t'}"; return 0; }
    done < <(screen_text)
    return 0
}

# Waits until a line of that role matches the pattern; prints its text.
wait_match() {
    local role=$1 pattern=$2 what=$3 text=""
    for _ in $(seq 1 100); do
        text=$(shown_text "$role" "$pattern")
        [[ -n "$text" ]] && { printf '%s\n' "$text"; return 0; }
        sleep 0.1
    done
    echo "after '$what': no $role matching '$pattern'; the screen showed:" >&2
    screen_text >&2
    exit 1
}

# How many distinct colours the screen shows inside that window's middle
# half: 1 for a blank area.
colours_in_middle_of() {
    local window=$1
    eval "$(xdotool getwindowgeometry --shell "$window")"
    import -window root -crop "$((WIDTH / 2))x$((HEIGHT / 2))+$((X + WIDTH / 4))+$((Y + HEIGHT / 4))" \
        -format '%k' info: 2>/dev/null
}
