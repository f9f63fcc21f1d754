#!/usr/bin/env bash
# Everything that has to hold of the build for 64-bit Windows, run under Wine. Stops at the first step that fails; a
# second run is quick. The servers that the tests talk to run natively on this system.
#
#     scripts/test-windows.sh              all steps
#     scripts/test-windows.sh STEP...      these steps, in this order
#
#     deps      installs the Debian packages that are missing; builds the libraries for Windows once, into a cache
#     build     builds everything
#     tidy      clang-tidy over the sources that only Windows has     (needs build)
#     tests     runs all tests                                        (needs build)
#     exports   what vantra.dll exports, beside libvantra.so, and what the DLLs need   (needs build)
#     package   the .zip, unpacked and used by a project of its own   (needs build)
# shellcheck source=scripts/lib.sh
. "$(dirname "$0")/lib.sh"
# shellcheck source=scripts/steps.sh
. scripts/steps.sh

preset=windows-x64
# Wine shows this system's files as the drive Z.
tests_see_root=Z:

step_deps() {
    scripts/install-deps.sh build test check windows
    scripts/windows-deps.sh
}

step_build() {
    # Or ccache would keep nothing that was compiled with precompiled headers.
    CCACHE_SLOPPINESS=pch_defines,time_macros build_preset "$preset"
}

step_tidy() {
    local sources
    mapfile -t sources < <(tree_files 'kel/src/windows/*.cpp' 'proxy/windows/*.cpp' 'tools/windows/*.cpp')
    scripts/check-tidy.py --jobs "$CMAKE_BUILD_PARALLEL_LEVEL" "build/$preset" "${sources[@]}"
}

step_tests() {
    # Where wine-run.sh cannot fix addresses, Wine fails to start a program now and then. One that passes when it is
    # repeated counts; ctest shows the failure, too.
    run_tests "$preset" -- --repeat until-pass:2
}

step_exports() {
    cmake --preset debug
    cmake --build --preset debug --target vantra
    scripts/check-windows-exports.sh "build/$preset" build/debug
}

step_package() { scripts/test-windows-package.sh "build/$preset"; }

case ${1-} in
--help | -h)
    print_usage
    exit 0
    ;;
esac
run_steps "deps build tidy tests exports package" "$@"
