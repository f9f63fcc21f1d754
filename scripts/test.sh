#!/usr/bin/env bash
# Everything that has to hold before a change lands. Stops at the first step that fails; a second run is quick.
#
#     scripts/test.sh              all steps
#     scripts/test.sh --quick      deps, format and debug
#     scripts/test.sh STEP...      these steps, in this order
#
#     deps      installs the Debian packages that are missing
#     format    formatting
#     words     no references to documents outside of the tree
#     shell     shell scripts
#     debug     builds everything, runs all tests
#     headers   each public header compiles alone                     (needs debug)
#     exports   what the shared library exports                       (needs debug)
#     api       the interface is the one that api/ records            (needs debug)
#     install   the library installed and used by a project of its own    (needs debug)
#     tidy      clang-tidy over the product's sources                 (needs debug)
#     asan      all tests with the address and undefined behaviour sanitizers
#     tsan      the tests labelled "threads" with the thread sanitizer
#     release   builds the product and the benchmarks optimised; each benchmark runs briefly
#     debs      makes the Debian packages and uses them in a minimal Debian (as root; makes that in the first run)
#     docs      documents and reference fit the tree; the steps of docs/getting-started.md work
# shellcheck source=scripts/lib.sh
. "$(dirname "$0")/lib.sh"
# shellcheck source=scripts/steps.sh
. scripts/steps.sh

all_steps="deps format words shell debug headers exports api install tidy asan tsan release debs docs"

step_deps() { scripts/install-deps.sh; }
step_format() { scripts/check-format.sh; }
step_words() { scripts/check-words.sh; }
step_shell() { scripts/check-shell.sh; }
step_headers() { scripts/check-headers.sh build/debug; }
step_exports() { scripts/check-exports.sh build/debug; }
step_api() { scripts/check-api.sh build/debug; }
step_install() { scripts/test-install.sh build/debug; }
step_docs() { scripts/check-docs.sh; }
step_tidy() { scripts/check-tidy.py --jobs "$CMAKE_BUILD_PARALLEL_LEVEL" build/debug; }

step_debug() {
    build_preset debug
    run_tests debug --
}

step_asan() {
    build_preset asan
    # Without strict_string_checks: libcurl parses numbers in buffers that no NUL ends, and may.
    export ASAN_OPTIONS=detect_leaks=1:detect_stack_use_after_return=1
    export UBSAN_OPTIONS=print_stacktrace=1:halt_on_error=1
    run_tests asan --
}

step_tsan() {
    local programs
    cmake --preset tsan
    # A test has the name of its program.
    mapfile -t programs < <(ctest --preset tsan --show-only --label-regex '^threads$' | sed -nE 's/^ *Test +#[0-9]+: (.*)$/\1/p')
    [ "${#programs[@]}" -gt 0 ] || die "no test is labelled \"threads\""
    build_preset tsan "${programs[@]}"
    # On some kernels the layout of the address space is too random for the sanitizer of this compiler.
    local probe=build/tsan/probe launcher=()
    g++ -fsanitize=thread -x c++ -o "$probe" - <<<'int main() {}'
    runs_reliably "$probe" || launcher=(setarch --addr-no-randomize)
    runs_reliably "${launcher[@]}" "$probe" || die "programs with the thread sanitizer do not run on this machine"
    export TSAN_OPTIONS=halt_on_error=1:second_deadlock_stack=1
    run_tests tsan "${launcher[@]}" -- --label-regex '^threads$'
}

runs_reliably() {
    local attempt
    for attempt in {1..20}; do
        "$@" >/dev/null 2>&1 || return "$attempt"
    done
}

step_release() {
    build_preset release vantra vantra_command vantra_bench vantra_mailbench vantra_microbench
    build/release/bin/vantra_bench --smoke
    build/release/bin/vantra_mailbench --smoke
    build/release/bin/vantra_microbench --benchmark_min_time=0.001
}

step_debs() {
    scripts/make-debs.sh
    scripts/test-debs.sh
}

case ${1-} in
--help | -h)
    print_usage
    exit 0
    ;;
--quick)
    [ $# -eq 1 ] || die "--quick takes no steps"
    set -- deps format debug
    ;;
esac
run_steps "$all_steps" "$@"
