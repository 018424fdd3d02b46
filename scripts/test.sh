#!/usr/bin/env bash
# Installs what is missing, builds and runs the whole test suite; ends with
# CTest's summary.
set -euo pipefail
cd "$(dirname "$0")/.."
scripts/install-deps.sh --test
cmake -S . -B build-tests -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo
cmake --build build-tests
cd build-tests
QT_QPA_PLATFORM=offscreen ctest --output-on-failure --timeout 600 "$@"

# The suites that read files again, under AddressSanitizer and UBSan.
cd ..
scripts/test-sanitized.sh
