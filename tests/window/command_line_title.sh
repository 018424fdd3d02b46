#!/usr/bin/env bash
# Starts the built program in a real X server with a file on its command
# line and checks that the window title names that file.
set -euo pipefail
vimora=$1

if [[ -z "${VIMORA_IN_XVFB:-}" ]]; then
    export VIMORA_IN_XVFB=1
    unset QT_QPA_PLATFORM
    exec xvfb-run -a -s "-screen 0 1280x1024x24" bash "$0" "$vimora"
fi

work=$(mktemp -d)
trap 'kill "${pid:-0}" 2>/dev/null || true; rm -rf "$work"' EXIT
mkdir -p "$work/home/config/Vimora" "$work/pictures, 2024"
convert -size 64x48 xc:orange "$work/pictures, 2024/first photo.jpg"
convert -size 64x48 xc:teal "$work/pictures, 2024/second è.bmp"
export HOME="$work/home" XDG_CONFIG_HOME="$work/home/config" XDG_DATA_HOME="$work/home/data" \
       XDG_CACHE_HOME="$work/home/cache"
printf '[UserDef]\nLanguage=EN\n' > "$XDG_CONFIG_HOME/Vimora/Vimora.ini"

# The path goes as it would from a desktop entry: one argument, blanks and all.
"$vimora" "$work/pictures, 2024/second è.bmp" &
pid=$!
expected=" second è.bmp  - Vimora "
title=""
for _ in $(seq 1 100); do
    for window in $(xdotool search --pid "$pid" --name "Vimora" 2>/dev/null || true); do
        title=$(xdotool getwindowname "$window" 2>/dev/null || true)
        [[ "$title" == "$expected" ]] && { echo "window title: '$title'"; exit 0; }
    done
    sleep 0.2
done
echo "window title was '${title:-none}', expected '$expected'" >&2
exit 1
