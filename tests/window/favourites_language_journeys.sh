#!/usr/bin/env bash
# The favourites list kept across a restart, and the language switched with
# F2 from each window: every shown window's texts follow.
set -euo pipefail
source "$(dirname "$0")/journey.sh"
begin_journeys "$@"

orange_pictures "$work/pictures" a b c
ini=$XDG_CONFIG_HOME/Vimora/Vimora.ini
pictures=$work/pictures

# Guards: favourites added in one run missing from the list in the next.
# Expect: after Alt+A on a.jpg and c.jpg and a quit, the settings hold both;
# started again, Alt+G shows the favourites window listing both, not b.jpg.
favourites_survive_a_restart() {
    start_vimora " a.jpg  - Vimora " "$pictures/a.jpg"
    press alt+a
    press Down
    wait_title " b.jpg  - Vimora " "Down"
    press Down
    wait_title " c.jpg  - Vimora " "Down again"
    press alt+a
    close_vimora
    grep -q "=$pictures/a.jpg\$" "$ini" && grep -q "=$pictures/c.jpg\$" "$ini" \
        || { echo "${FUNCNAME[0]}: the settings lack a favourite" >&2; cat "$ini" >&2; exit 1; }
    start_vimora " b.jpg  - Vimora " "$pictures/b.jpg"
    press alt+g
    wait_text $'button\tClear List' "Alt+G"
    wait_for "a.jpg listed" control_shown $'list item\t'"$pictures/a.jpg"
    control_shown $'list item\t'"$pictures/c.jpg"
    if control_shown $'list item\t'"$pictures/b.jpg"; then echo "${FUNCNAME[0]}: b.jpg listed" >&2; exit 1; fi
    echo "${FUNCNAME[0]}: both favourites came back"
}

# Guards: F2 left the favourites window in the old language, F2 in the index
# left the main window in it, and the index's title lost its folder; the type
# filter was read with its code and patterns.
# Expect: after each F2 and a choice, the main window's, the index's and the
# favourites window's texts are all in the chosen language, and the index's
# title still names the folder.
f2_from_every_window_switches_every_window() {
    # Favourites window open from the journey before; the index too.
    xdotool windowactivate --sync "$main_window" 2>/dev/null || true
    press alt+t
    wait_text $'button\tPrevious page' "Alt+T"

    xdotool windowactivate --sync "$main_window" 2>/dev/null || true
    press F2
    click_on $'button\tItaliano'
    wait_text $'button\tSvuota la cronologia dei percorsi' "F2 in the main window, Italiano"
    wait_text $'button\tPagina precedente' "the index after F2 in the main window"
    wait_text $'button\tSvuota elenco' "the favourites after F2 in the main window"
    wait_text $'window\t '"$pictures" "the index's title after F2"
    # The type filter is read by its label alone, in either language.
    wait_text $'combo\tTutti i supportati' "the type filter after F2"

    wait_title " $pictures" "the index"
    xdotool windowactivate --sync "$found_window" 2>/dev/null || true
    press F2
    click_on $'button\tEnglish'
    wait_text $'button\tClear path box' "F2 in the index, English"
    wait_text $'combo\tAll Supported' "the type filter after F2 in the index"
    wait_text $'button\tClear List' "the favourites after F2 in the index"
    wait_text $'button\tPrevious page' "the index after F2 in the index"
    wait_text $'window\t '"$pictures" "the index's title after F2 in the index"

    wait_title "Global Operations" "the favourites window"
    xdotool windowactivate --sync "$found_window" 2>/dev/null || true
    press F2
    click_on $'button\tItaliano'
    wait_text $'button	Svuota elenco' "F2 in the favourites window, Italiano"
    wait_text $'button	Svuota la cronologia dei percorsi' "the main window after F2 in the favourites"
    wait_text $'button	Pagina precedente' "the index after F2 in the favourites"
    echo "${FUNCNAME[0]}: every window followed F2 from each of the three"
}

favourites_survive_a_restart
f2_from_every_window_switches_every_window
close_vimora
