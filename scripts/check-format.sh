#!/usr/bin/env bash
# Every C++ file is formatted as .clang-format says.
# shellcheck source=scripts/lib.sh
. "$(dirname "$0")/lib.sh"

mapfile -t files < <(tree_files '*.h' '*.cpp')
[ ${#files[@]} -gt 0 ] || die "no C++ files found"
if ! report=$(printf '%s\n' "${files[@]}" | xargs -d '\n' clang-format --dry-run -Werror 2>&1); then
    # One line for each place; the lines of source below them say nothing that clang-format -i does not mend.
    grep -E '^[^ ]+:[0-9]+:[0-9]+: ' <<<"$report" | cut -d : -f 1 | sort | uniq -c >&2 || printf '%s\n' "$report" >&2
    die "these files are not formatted (with the number of places); mend them with: clang-format -i FILE..."
fi
say "${#files[@]} files are formatted."
