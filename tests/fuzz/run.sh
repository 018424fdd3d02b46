#!/usr/bin/env bash
# Builds the libFuzzer programs with clang in build-fuzz and runs each for a
# bounded time, one after the other. Inputs that crash, hang or leak are kept
# in tests/fuzz/regressions/<target>/; the script then fails.
#   tests/fuzz/run.sh [seconds-per-target] [target...]
# FUZZ_KEEP_GOING=1 runs in libFuzzer's fork mode, which keeps fuzzing past
# a crash or hang (for long runs; every fault is still kept and reported).
set -uo pipefail
cd "$(dirname "$0")/../.."
seconds=${1:-60}
shift || true
targets=("$@")
if [[ ${#targets[@]} -eq 0 ]]; then
    for source in tests/fuzz/fuzz_*.cpp; do
        name=${source##*/fuzz_}
        targets+=("${name%.cpp}")
    done
fi
build=${FUZZ_BUILD_DIR:-build-fuzz}

if [[ ! -f $build/CMakeCache.txt ]]; then
    CC=clang CXX=clang++ cmake -S . -B "$build" -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo \
        -DVIMORA_FUZZ=ON -DVIMORA_BUILD_TESTS=OFF -DVIMORA_BUILD_BENCH=OFF >/dev/null || exit 2
fi
cmake --build "$build" --target vimora_fuzzers || exit 2

export QT_QPA_PLATFORM=offscreen
export LSAN_OPTIONS="suppressions=$PWD/tests/fuzz/lsan.supp:print_suppressions=0"
failed=()
for target in "${targets[@]}"; do
    corpus=$build/corpus/$target       # grows between runs; not kept in git
    kept=tests/fuzz/regressions/$target
    log=$build/logs/$target.log
    mkdir -p "$corpus" "$kept" "$(dirname "$log")"
    mode=()
    [[ ${FUZZ_KEEP_GOING:-0} == 1 ]] && mode=(-fork=1 -ignore_crashes=1 -ignore_timeouts=1 -ignore_ooms=1)
    before=$(ls "$kept" | wc -l)
    started=$(date +%s)
    "$build/bin/fuzz_$target" "$corpus" "tests/fuzz/seeds/$target" "${mode[@]}" \
        -max_total_time="$seconds" -timeout=10 -rss_limit_mb=2048 -malloc_limit_mb=2048 \
        -artifact_prefix="$kept/" -print_final_stats=1 >"$log" 2>&1
    status=$?
    # Fork mode neither fails nor prints the final count; new inputs kept tell.
    if [[ $status -eq 0 && $(ls "$kept" | wc -l) -gt $before ]]; then status=1; fi
    runs=$(sed -n 's/^stat::number_of_executed_units: *//p' "$log")
    [[ -z $runs ]] && runs=$(grep -oE '^#[0-9]+' "$log" | tail -1 | tr -d '#')
    echo "$target: $(( $(date +%s) - started )) s, ${runs:-?} executions, exit $status"
    if [[ $status -ne 0 ]]; then
        failed+=("$target")
        grep -E '^(==[0-9]+==ERROR|SUMMARY|broken|artifact_prefix|Test unit written)' "$log" | head -8
    fi
done
[[ ${#failed[@]} -eq 0 ]] || { echo "Fuzzing found faults in: ${failed[*]} (logs in $build/logs)"; exit 1; }
