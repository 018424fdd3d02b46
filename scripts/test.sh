#!/usr/bin/env bash
# Installs what is missing, builds and runs the whole test suite (CTest's
# summary), then the suites that read files under the sanitizers, then the
# parser fuzzers briefly.
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

# The parsers' fuzzers, ten seconds each (a clang build of just those).
tests/fuzz/run.sh 10
