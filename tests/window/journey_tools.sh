# Shared by the user journeys: start and stop Vimora, wait for windows and
# files, click a control found by what a screen reader calls it.
# Needs session.sh sourced, $vimora set and fresh_home run.

main_window=""
# Waits for a window of the program with exactly that title.
wait_title() {
    local expected=$1 journey=$2 title=""
    for _ in $(seq 1 300); do
        for window in $(xdotool search --onlyvisible --pid "$pid" --name "." 2>/dev/null || true); do
            title=$(xdotool getwindowname "$window" 2>/dev/null || true)
            [[ "$title" == "$expected" ]] && { found_window=$window; return 0; }
        done
        sleep 0.1
    done
    echo "$journey: no window titled '$expected'; on screen:" >&2
    screen_text | grep "^window" >&2
    kill -0 "$pid" 2>/dev/null || echo "the program had ended" >&2
    tail -5 "$work/vimora.log" >&2 2>/dev/null || true
    exit 1
}

start_on() {
    "$vimora" "$1" 2>"$work/vimora.log" &
    pid=$!
    wait_title "$2" "start on $1"
    main_window=$found_window
    xdotool windowactivate --sync "$main_window" 2>/dev/null || true
}

quit() {
    kill -0 "$pid" 2>/dev/null || { echo "the program ended by itself" >&2; exit 1; }
    # Asked again when the keys went to a window still being raised.
    for _ in 1 2 3; do
        xdotool windowactivate --sync "$main_window" 2>/dev/null || true
        xdotool key --clearmodifiers alt+F4
        for _ in $(seq 1 50); do kill -0 "$pid" 2>/dev/null || { wait "$pid" || true; return 0; }; sleep 0.1; done
    done
    echo "Alt+F4 did not end the program" >&2
    exit 1
}

# Clicks the shown control a screen reader calls so: click "button" "Set Viewer"
click() {
    local at=""
    for _ in $(seq 1 100); do
        at=$(/usr/bin/python3 "$(dirname "${BASH_SOURCE[0]}")/control_centre.py" "$1" "$2" 2>/dev/null || true)
        [[ -n "$at" ]] && break
        sleep 0.1
    done
    [[ -n "$at" ]] || { echo "no $1 '$2' on screen; it showed:" >&2; screen_text >&2; exit 1; }
    # shellcheck disable=SC2086
    xdotool mousemove --sync $at click 1
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

press() { xdotool key --clearmodifiers "$@"; }

# Whether a control a screen reader calls so is on screen now.
shown() {
    [[ -n "$(/usr/bin/python3 "$(dirname "${BASH_SOURCE[0]}")/control_centre.py" "$1" "$2" 2>/dev/null || true)" ]]
}
