#!/usr/bin/env bash
# Builds everything with coverage counters, runs all tests and tells how much of the library they execute: lines and
# branches for each room and library, then every line that no test reached. Fails when a part that must be covered has
# less than 95 % of its lines executed.
#
#     scripts/coverage.sh              builds, runs the tests, reports
#     scripts/coverage.sh --report     reports on the last run again
#
# Writes build/coverage/report.txt and, for every source line, build/coverage/html/index.html.
# shellcheck source=scripts/lib.sh
. "$(dirname "$0")/lib.sh"

build=build/coverage
rooms=(foundation http request proxy async ftp s3 mail)

case ${1-} in
'')
    scripts/install-deps.sh build test coverage
    cmake --preset coverage
    cmake --build --preset coverage
    find "$build" -name '*.gcda' -delete
    # One test limits the size of all files that the command writes, the counters among them.
    without_proxies GTEST_FILTER=-ToolOutputFile.IsGivenUpWhenItCannotBeWritten \
        ctest --preset coverage --parallel "$CMAKE_BUILD_PARALLEL_LEVEL" --no-tests=error
    ;;
--report)
    [ -d "$build" ] || die "there is no run to report on: scripts/coverage.sh"
    ;;
*) die "unknown argument '$1'; without one it builds and tests, --report repeats the report" ;;
esac

# Exceptions can leave almost every statement, and a declaration makes a branch of its own: neither is a choice that
# the source makes.
mkdir -p "$build/html"
gcovr --root . --object-directory "$build" -j "$CMAKE_BUILD_PARALLEL_LEVEL" \
    --exclude-throw-branches --exclude-unreachable-branches --gcov-ignore-parse-errors \
    --filter '(foundation|http|request|proxy|async|ftp|s3|mail|tools)/' --filter 'kel/(src|include)' \
    --filter 'sigil/(src|include)' --filter 'include/vantra' \
    --json "$build/coverage.json" --html-details "$build/html/index.html" >"$build/gcovr.log" ||
    die "gcovr failed: $(tail -n 5 "$build/gcovr.log")"
scripts/coverage-report.py "$build/coverage.json" --least 95 --must-reach "${rooms[@]}" | tee "$build/report.txt"
