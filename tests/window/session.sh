# Shared by the real-window scripts: a private X server with its own session
# bus (for the screen reader's view of the windows), and a fresh user whose
# first start asks no language question.

# Runs the calling script again under an Xvfb screen of its own, of the
# given size: in_xvfb 1280x1024 "$0" args...
in_xvfb()
{
    [[ -n "${VIMORA_IN_XVFB:-}" ]] && return 0
    export VIMORA_IN_XVFB=1
    unset QT_QPA_PLATFORM
    # Qt offers its widgets to screen readers only when asked to or when a
    # desktop says one runs.
    export QT_LINUX_ACCESSIBILITY_ALWAYS_ON=1 NO_AT_BRIDGE=0
    # -noreset: the server stays up when the last program closes, so the
    # next one started does not meet it resetting.
    exec xvfb-run -a -s "-screen 0 ${1}x24 -noreset" dbus-run-session -- bash "${@:2}"
}

# What a screen reader finds in the program's shown windows, a line each:
# "window<TAB>title", "label<TAB>text", "button<TAB>text", ...
screen_text()
{
    # A message's lines may end in CR LF; a screen reader reads no CR.
    { /usr/bin/python3 "$(dirname "${BASH_SOURCE[0]}")/screen_text.py" Vimora 2>/dev/null || true; } | tr -d '\r'
}

# Waits until a line of screen_text is exactly this ("label<TAB> 2/3 ");
# fails the script, with what the screen showed, when it does not come.
wait_text()
{
    local expected=$1 what=${2:-$1} shown=""
    for _ in $(seq 1 100); do
        shown=$(screen_text)
        grep -qxF -- "$expected" <<<"$shown" && return 0
        sleep 0.1
    done
    echo "after '$what': the screen never showed '$expected'; it showed:" >&2
    echo "$shown" >&2
    exit 1
}

# Waits until no line of screen_text is exactly this (a window gone).
wait_no_text()
{
    local gone=$1 what=${2:-$1} shown=""
    for _ in $(seq 1 100); do
        shown=$(screen_text)
        grep -qxF -- "$gone" <<<"$shown" || return 0
        sleep 0.1
    done
    echo "after '$what': the screen still showed '$gone'" >&2
    exit 1
}

# Clicks a control as a user does, found by its kind and the start of its
# name, each step inside the one before: click_inside "filler:Movie" "slider:"
click_inside()
{
    local at
    at=$(/usr/bin/python3 "$(dirname "${BASH_SOURCE[0]}")/screen_text.py" Vimora --place "$@" 2>/dev/null || true)
    [[ -n "$at" ]] || { echo "no $* on the screen to click" >&2; exit 1; }
    # shellcheck disable=SC2086
    xdotool mousemove $at click 1
}

# Starts openbox ($wm) and waits until it manages windows. Now and then it
# cannot open a display that has just come up: it is started again.
start_window_manager()
{
    for _ in 1 2 3 4 5; do
        openbox >/dev/null 2>&1 &
        wm=$!
        for _ in $(seq 1 50); do
            xprop -root _NET_SUPPORTING_WM_CHECK 2>/dev/null | grep -q 'window id' && return 0
            kill -0 "$wm" 2>/dev/null || break
            sleep 0.1
        done
        kill "$wm" 2>/dev/null || true
        sleep 0.5
    done
    echo "the window manager did not start" >&2
    exit 1
}

# Makes $work with an empty home in English. The program ($pid) and the
# window manager ($wm), when started, go with it at exit.
fresh_home()
{
    work=$(mktemp -d)
    trap 'kill ${pid:+"$pid"} ${wm:+"$wm"} 2>/dev/null || true; rm -rf "$work"' EXIT
    mkdir -p "$work/home/config/Vimora"
    export HOME="$work/home" XDG_CONFIG_HOME="$work/home/config" XDG_DATA_HOME="$work/home/data" \
           XDG_CACHE_HOME="$work/home/cache"
    printf '[UserDef]\nLanguage=EN\n' > "$XDG_CONFIG_HOME/Vimora/Vimora.ini"
}
