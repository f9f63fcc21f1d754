#!/bin/sh
# Builds the fuzz targets with clang and sanitizers, and runs them one after the other.
#
#     scripts/fuzz.sh                          each target for a minute
#     scripts/fuzz.sh 300                      each for five minutes
#     scripts/fuzz.sh 300 url_params ...       just these
#
# What libFuzzer finds worth keeping goes to build/fuzz/found/TARGET, an input that makes a target fail to
# build/fuzz/failures/TARGET-*; the script ends with 1 if there is one. The corpus in fuzz/corpus is only read.
# VANTRA_FUZZ_BUILD names another folder than build/fuzz.
set -eu

cd "$(dirname "$0")/.."
seconds=${1:-60}
[ $# -eq 0 ] || shift
case $seconds in
'' | *[!0-9]*)
    echo "usage: scripts/fuzz.sh [seconds] [target...]" >&2
    exit 2
    ;;
esac
cd fuzz/corpus
[ $# -gt 0 ] || set -- *
for target; do
    [ -d "$target" ] || {
        echo "No such target: $target. There are:" * >&2
        exit 2
    }
done
cd ../..

build=${VANTRA_FUZZ_BUILD:-build/fuzz}
cmake -G Ninja -S . -B "$build" -DCMAKE_CXX_COMPILER="${CXX:-clang++}" -DCMAKE_BUILD_TYPE=RelWithDebInfo \
    -DVANTRA_BUILD_FUZZERS=ON -DVANTRA_SANITIZE=fuzzer-no-link,address,undefined >/dev/null
for target; do
    cmake --build "$build" -j2 --target "fuzz_$target"
done

# Freed memory is kept from reuse, which finds late uses of it; more than this only costs time with inputs so small.
export ASAN_OPTIONS="${ASAN_OPTIONS:-quarantine_size_mb=8:malloc_context_size=3}"
mkdir -p "$build/failures"
failed=
for target; do
    mkdir -p "$build/found/$target"
    log="$build/$target.log"
    echo "== $target"
    "$build/bin/fuzz_$target" -max_total_time="$seconds" -max_len=2048 -timeout=60 -rss_limit_mb=1024 \
        -print_final_stats=1 -artifact_prefix="$build/failures/$target-" \
        "$build/found/$target" "fuzz/corpus/$target" >"$log" 2>&1 || failed="$failed $target"
    grep -E '^(stat::number_of_executed_units|SUMMARY|Does not hold)' "$log" || true
done
[ -z "$failed" ] || {
    echo "Failed:$failed. The logs are $build/TARGET.log." >&2
    exit 1
}
