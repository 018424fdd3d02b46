# Shared by the real-window scripts: a private X server, and a fresh user
# whose first start asks no language question.

# Runs the calling script again under an Xvfb screen of its own, of the
# given size: in_xvfb 1280x1024 "$0" args...
in_xvfb()
{
    [[ -n "${VIMORA_IN_XVFB:-}" ]] && return 0
    export VIMORA_IN_XVFB=1
    unset QT_QPA_PLATFORM
    exec xvfb-run -a -s "-screen 0 ${1}x24" bash "${@:2}"
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
