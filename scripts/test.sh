#!/usr/bin/env bash
# Installs what is missing, builds and runs the whole test suite (CTest's
# summary), then the suites that read files under the sanitizers. Every
# fuzzer's seeds and kept inputs are replayed in both; exploring with the
# fuzzers is tests/fuzz/run.sh, on its own, so a chance find never fails an
# unrelated change.
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
