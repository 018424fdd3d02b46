#!/usr/bin/env bash
# Installs the Debian 12 packages Vimora needs that are not there yet.
#   scripts/install-deps.sh          build and run
#   scripts/install-deps.sh --test   also what the test suite uses
#   scripts/install-deps.sh --bench  also the other viewers the bench compares with
set -euo pipefail

packages=(build-essential cmake ninja-build pkg-config
          qt6-base-dev qt6-svg-dev libmpv-dev libemf2svg-dev libwmf-dev
          qt6-image-formats-plugins libqt6svg6 qt6-qpa-plugins xdg-utils shared-mime-info libxcb1-dev libxcb-xtest0-dev
          libheif-dev libjxl-dev libjpeg62-turbo-dev libraw-dev liblcms2-dev fontconfig fonts-dejavu-core)
if [[ "${1:-}" == "--test" || "${1:-}" == "--bench" ]]; then
    packages+=(libgtest-dev libgmock-dev xvfb xauth xdotool openbox xclip imagemagick poppler-utils python3
               dbus-daemon at-spi2-core python3-pyatspi python3-xlib x11-utils
               ffmpeg dvdauthor exiv2 libjpeg-turbo-progs libvips-tools desktop-file-utils
               clang libclang-rt-14-dev)
fi
# The viewers the bench measures Vimora against, and a desktop to run them in.
if [[ "${1:-}" == "--bench" ]]; then
    packages+=(dbus-daemon feh nsxiv qimgv eog)
    # The libraries' own decoders, the references for today's picture types.
    packages+=(netpbm webp libheif-examples libavif-bin)
fi

missing=()
for package in "${packages[@]}"; do
    dpkg-query -W -f='${Status}' "$package" 2>/dev/null | grep -q "install ok installed" || missing+=("$package")
done
[[ ${#missing[@]} -eq 0 ]] && exit 0

sudo=()
if [[ $(id -u) -ne 0 ]]; then
    if ! command -v sudo >/dev/null; then
        echo "These Debian packages are missing: ${missing[*]}" >&2
        echo "Install them as root (su -c 'apt-get install ${missing[*]}'), or install sudo, then run this again." >&2
        exit 1
    fi
    sudo=(sudo)
fi
echo "Installing: ${missing[*]}"
"${sudo[@]}" apt-get update -qq
# Through env: sudo would drop the variable, and apt could stop at a question.
"${sudo[@]}" env DEBIAN_FRONTEND=noninteractive apt-get install -y -qq --no-install-recommends "${missing[@]}"
