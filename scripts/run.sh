#!/usr/bin/env bash
# Installs what is missing, makes a release build and starts Vimora on the
# sample pictures and movies that come with it.
set -euo pipefail
cd "$(dirname "$0")/.."
scripts/install-deps.sh
cmake -S . -B build-release -G Ninja -DCMAKE_BUILD_TYPE=Release -DVIMORA_BUILD_TESTS=OFF -DVIMORA_BUILD_BENCH=OFF
cmake --build build-release
# At its first start Vimora opens its own data folder, which holds the samples.
exec build-release/bin/vimora
