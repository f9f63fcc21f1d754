#!/usr/bin/env bash
# The tree's shell scripts pass shellcheck.
# shellcheck source=scripts/lib.sh
. "$(dirname "$0")/lib.sh"

mapfile -t files < <(tree_files .ci/run '*.sh' '*.bash')
[ ${#files[@]} -gt 0 ] || die "no shell scripts found"
shellcheck --external-sources -- "${files[@]}" || die "shellcheck objects"
say "${#files[@]} shell scripts pass shellcheck."
