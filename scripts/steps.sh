# shellcheck shell=bash
# What the scripts that run a sequence of steps share; each sources it after lib.sh, defines a function step_NAME for
# each step, and calls run_steps.

# note TEXT: what the summary shows of the step that runs.
note() {
    printf '%s\n' "$*" >"$notes/$step"
}

# print_usage: the comment at the top of the script.
print_usage() {
    sed -n '2,/^# shellcheck/{/^# shellcheck/d;s/^# \{0,1\}//;p}' "$0"
}

# build_preset PRESET [TARGET...]: all targets if none is named.
build_preset() {
    local preset=$1 targets=()
    shift
    [ $# -eq 0 ] || targets=(--target "$@")
    cmake --preset "$preset"
    cmake --build --preset "$preset" "${targets[@]}"
}

# run_tests PRESET [LAUNCHER...] -- [CTEST-ARGUMENT...]: runs tests of a build. Leaves what they amount to for the
# summary. A test that skips itself counts as a failure: it would hide that a server is missing. $tests_see_root is what
# the programs have to put before a full path of this system, if anything.
run_tests() {
    local preset=$1 launcher=()
    shift
    while [ "$1" != -- ]; do
        launcher+=("$1")
        shift
    done
    shift
    local reports=$PWD/build/$preset/test-reports cases programs skipped
    rm -rf "$reports"
    # Brief: ctest shows all that a failing program wrote, in which the failures should not have to be looked for.
    without_proxies GTEST_BRIEF=1 GTEST_OUTPUT="xml:${tests_see_root-}$reports/" "${launcher[@]}" \
        ctest --preset "$preset" --parallel "$CMAKE_BUILD_PARALLEL_LEVEL" --no-tests=error "$@"
    programs=$(find "$reports" -name '*.xml' | wc -l)
    cases=$(find "$reports" -name '*.xml' -exec sed -nE 's/^<testsuites tests="([0-9]+)".*/\1/p' {} + |
        awk '{ sum += $1 } END { print sum + 0 }')
    skipped=$({ grep -rhE 'result="skipped"' "$reports" || true; } | sed -nE 's/.*<testcase name="([^"]*)".*classname="([^"]*)".*/\2.\1/p')
    [ -z "$skipped" ] || die "tests were skipped: $skipped"
    [ "$cases" -gt 0 ] || die "no test cases were run"
    say "$cases test cases in $programs programs passed."
    note "$cases tests"
}

# minutes SECONDS
minutes() {
    printf '%d:%02d' $(($1 / 60)) $(($1 % 60))
}

print_summary() {
    printf '\n%-10s %8s\n' step min:s
    local row
    for row in "${summary[@]}"; do printf '%s\n' "$row"; done
}

# run_steps "ALL STEPS" [STEP...]: runs these steps, or all. Stops at the first that fails.
run_steps() {
    local all=$1 status begin took
    shift
    for step in "$@"; do
        [[ " $all " = *" $step "* ]] || die "unknown step '$step'; the steps are: $all"
    done
    # shellcheck disable=SC2086  # the steps are words
    [ $# -gt 0 ] || set -- $all

    notes=$(mktemp -d)
    trap 'rm -rf "$notes"' EXIT
    summary=()
    for step in "$@"; do
        printf '\n=== %s\n' "$step"
        begin=$SECONDS
        # Not the condition of an if, inside of which a failing command would not end the step.
        set +e
        (
            set -e
            "step_$step"
        )
        status=$?
        set -e
        took=$(minutes $((SECONDS - begin)))
        if [ $status -ne 0 ]; then
            summary+=("$(printf '%-10s %8s  FAILED' "$step" "$took")")
            print_summary
            die "step '$step' failed (status $status); repeat it alone with: $0 $step"
        fi
        if [ ! -f "$notes/$step" ]; then note ok; fi
        summary+=("$(printf '%-10s %8s  %s' "$step" "$took" "$(cat "$notes/$step")")")
    done
    print_summary
    printf '%-10s %8s\n\n' all "$(minutes $SECONDS)"
    say "Everything passed."
}
