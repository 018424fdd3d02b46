#!/usr/bin/env bash
# The Set Viewer dialog as a user meets it: link a group, see the desktop
# open its files with Vimora, unlink it again. Read from the files Vimora
# writes (mimeapps.list, its settings, the user's MIME database).
set -euo pipefail
source "$(dirname "$0")/journey.sh"
begin_journeys "$@"

orange_pictures "$work/pictures" a
ini=$XDG_CONFIG_HOME/Vimora/Vimora.ini
mimeapps=$XDG_CONFIG_HOME/mimeapps.list

open_set_viewer() {
    click_on $'button\tSet Viewer'
    wait_text $'check\tJPG / JPEG' "Set Viewer"
}

# Guards: RegBak kept one key per extension; descriptions and icons unused.
# Expect: mimeapps.list names vimora.desktop for image/jpeg; RegBak holds
# JPGIcon, JPGComm, JPGCmd (and JPEG's) empty; "Linked" JPG=Y; the user's
# MIME database describes image/jpeg as "JPEG File" with Vimora's icon.
linking_jpg_makes_vimora_the_desktops_viewer() {
    open_set_viewer
    click_on $'check\tJPG / JPEG'
    click_on $'button\tOK'
    wait_for "image/jpeg linked in mimeapps.list" grep -qx 'image/jpeg=vimora.desktop;' "$mimeapps"
    wait_for "JPG=Y in the settings" grep -qx 'JPG=Y' "$ini"
    for key in JPGIcon JPGComm JPGCmd JPEGIcon JPEGComm JPEGCmd; do
        grep -qx "$key=" "$ini" || { echo "${FUNCNAME[0]}: RegBak has no empty $key" >&2; cat "$ini" >&2; exit 1; }
    done
    [[ "$(xdg-mime query default image/jpeg)" == vimora.desktop ]]
    grep -q '<comment>JPEG File</comment>' "$XDG_DATA_HOME/mime/image/jpeg.xml"
    grep -q '<icon name="vimora-jpeg"/>' "$XDG_DATA_HOME/mime/image/jpeg.xml"
    echo "${FUNCNAME[0]}: linked, with the three backups per extension"
}

# Guards: a linked IVF took no effect, the system knowing no IVF type.
# Expect: the user's MIME database maps *.ivf to video/x-ivf, whose default
# is vimora.desktop.
linking_ivf_installs_its_type() {
    open_set_viewer
    click_on $'check\tIVF'
    click_on $'button\tOK'
    wait_for "IVF=Y in the settings" grep -qx 'IVF=Y' "$ini"
    wait_for "the IVF type in the user's database" grep -q 'video/x-ivf:\*\.ivf' "$XDG_DATA_HOME/mime/globs2"
    [[ "$(xdg-mime query default video/x-ivf)" == vimora.desktop ]]
    echo "${FUNCNAME[0]}: *.ivf is video/x-ivf, opened by Vimora"
}

# Guards: unlinking left Vimora as the default.
# Expect: image/jpeg no longer in mimeapps.list, JPG=N, IVF still linked, and
# image/jpeg described as "JPG/JPEG File" without Vimora's icon.
unlinking_jpg_gives_the_type_back() {
    open_set_viewer
    click_on $'check\tJPG / JPEG'
    click_on $'button\tOK'
    wait_for "JPG=N in the settings" grep -qx 'JPG=N' "$ini"
    wait_for "image/jpeg gone from mimeapps.list" bash -c "! grep -q '^image/jpeg=' '$mimeapps'"
    grep -qx 'video/x-ivf=vimora.desktop;' "$mimeapps"
    wait_for "the unlinked description" grep -q '<comment>JPG/JPEG File</comment>' "$XDG_DATA_HOME/mime/image/jpeg.xml"
    if grep -q 'vimora-jpeg' "$XDG_DATA_HOME/mime/image/jpeg.xml"; then
        echo "${FUNCNAME[0]}: image/jpeg keeps Vimora's icon" >&2
        exit 1
    fi
    echo "${FUNCNAME[0]}: unlinked, IVF left as it was"
}

start_vimora " a.jpg  - Vimora " "$work/pictures/a.jpg"
linking_jpg_makes_vimora_the_desktops_viewer
linking_ivf_installs_its_type
unlinking_jpg_gives_the_type_back
close_vimora
