#!/usr/bin/env bash
# What the library costs beside bare libcurl, against servers on loopback. Builds the release preset first. Close other
# programs for figures that mean something.
#
#     scripts/bench.sh             all groups
#     scripts/bench.sh GROUP...    these
#     scripts/bench.sh --page      all groups, and writes docs/benchmarks.md from what they print
#
#     small           one small GET after the other
#     parallel        1, 64 and 512 small GETs in flight on one thread
#     start           from addRequest on a worker that has nothing to do to the first byte
#     escaping        urlEscape and urlUnescape
#     memory          a request that waits to be performed
#     ftp-listing     an MLSD listing of 100,000 lines, beside a bare split into lines
#     ftp-transfers   256 MiB from and to an FTP server
#     s3-sign         preparing and signing an upload to an object store, beside the bare digest and HMAC
#     s3-listing      parsing a listing of 1,000 objects, beside the bare XML load
#     s3-transfers    1 KiB, 1 MiB and 64 MiB to and from an object store
#     mail            messages and their encoders in memory, and one small mail after the other
#     download        1 GiB
# shellcheck source=scripts/lib.sh
. "$(dirname "$0")/lib.sh"

groups=(small parallel start escaping memory ftp-listing ftp-transfers s3-sign s3-listing s3-transfers mail download)
page=
if [ "${1-}" = --page ]; then
    page=docs/benchmarks.md
    shift
    [ $# -eq 0 ] || die "--page takes no groups: the page is that of all of them"
fi
for group; do
    [[ " ${groups[*]} " = *" $group "* ]] || die "unknown group '$group'; the groups are: ${groups[*]}"
done
[ $# -gt 0 ] || set -- "${groups[@]}"
scripts/install-deps.sh build bench test
cmake --preset release >/dev/null
cmake --build --preset release --target vantra_bench --target vantra_mailbench

run_benchmarks() {
    local group transfers=() with_mail=false
    for group; do
        if [ "$group" = mail ]; then with_mail=true; else transfers+=("$group"); fi
    done
    if [ ${#transfers[@]} -gt 0 ]; then build/release/bin/vantra_bench "${transfers[@]}"; fi
    if $with_mail; then build/release/bin/vantra_mailbench; fi
}

# machine FIELD: what lscpu says of the processor.
machine() {
    LC_ALL=C lscpu | sed -nE "s/^$1: *//p" | head -n 1
}

# The page begins with the lines of its template, docs/benchmarks.md.in, and ends with the figures.
write_page() {
    local tree memory
    tree=$(git rev-parse --short HEAD)
    memory=$(awk '/^MemTotal:/ { printf "%.0f GiB", $2 / 1048576 }' /proc/meminfo)
    cat docs/benchmarks.md.in
    printf '| what | |\n|---|---|\n'
    printf '| date | %s |\n' "$began"
    printf '| revision | %s |\n' "$tree"
    printf '| machine | %s, %s cores, %s, Linux %s |\n' "$(machine 'Model name')" "$(nproc)" "$memory" "$(uname -r)"
    printf '| load before | %s |\n' "$load"
    printf '| compiler | %s |\n' "$(c++ --version | head -n 1)"
    printf '| libcurl | %s |\n\n' "$(pkg-config --modversion libcurl)"
    sed -E 's/^(.)/    \1/' "$1"
}

if [ -z "$page" ]; then
    run_benchmarks "$@"
    exit 0
fi
began=$(date -u +%Y-%m-%d)
load=$(cut -d ' ' -f 1-3 /proc/loadavg)
figures=$(mktemp)
trap 'rm -f "$figures" "$figures.page"' EXIT
run_benchmarks "$@" | tee "$figures"
write_page "$figures" >"$figures.page"
cp "$figures.page" "$page"
say "$page is written."
