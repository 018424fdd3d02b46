#!/usr/bin/env bash
# Starts the built program in a real X server with a file on its command
# line and checks the window title names that file.
set -euo pipefail
vimora=$1
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
mkdir -p "$work/home" "$work/pictures dir"
convert -size 64x48 xc:orange "$work/pictures dir/first photo.jpg"
convert -size 64x48 xc:teal "$work/pictures dir/second.bmp"
export HOME="$work/home" XDG_CONFIG_HOME="$work/home/config" XDG_DATA_HOME="$work/home/data" \
       XDG_CACHE_HOME="$work/home/cache"
mkdir -p "$XDG_CONFIG_HOME/Vimora"
printf '[UserDef]\nLanguage=EN\n' > "$XDG_CONFIG_HOME/Vimora/Vimora.ini"
unset QT_QPA_PLATFORM

run() {
    "$vimora" "$work/pictures dir/second.bmp" &
    pid=$!
    for _ in $(seq 1 100); do
        title=$(xdotool search --pid "$pid" --name "Vimora" getwindowname 2>/dev/null | head -n1 || true)
        if [[ "$title" == " second.bmp  - Vimora " ]]; then
            echo "window title: '$title'"
            kill "$pid"
            return 0
        fi
        sleep 0.2
    done
    echo "window title was '${title:-none}', expected ' second.bmp  - Vimora '" >&2
    kill "$pid" 2>/dev/null || true
    return 1
}
export -f run
export vimora work
xvfb-run -a -s "-screen 0 1280x1024x24" bash -c run
