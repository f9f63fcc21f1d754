# shellcheck shell=bash
# What the scripts share; each sources it first. Leaves the shell in the top folder of the tree.

set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."

# Two compilers at a time fit into the memory of a small machine.
export CMAKE_BUILD_PARALLEL_LEVEL=${CMAKE_BUILD_PARALLEL_LEVEL:-2}

say() {
    printf '%s\n' "$*"
}

die() {
    printf '%s: %s\n' "${0##*/}" "$*" >&2
    exit 1
}

# The tree's files whose names match the given patterns: those under version control and those about to be. A file
# that was deleted but is still in the index is none of them.
tree_files() {
    local file
    git ls-files --cached --others --exclude-standard -- "$@" | while IFS= read -r file; do
        if [ -f "$file" ]; then printf '%s\n' "$file"; fi
    done
}

# on_every_line_in_parallel COMMAND ARGUMENT...: calls the command once for each line of standard input, with the line
# as its last argument. Fails if any of the calls does.
on_every_line_in_parallel() {
    xargs -r -d '\n' -n 1 -P "$CMAKE_BUILD_PARALLEL_LEVEL" "$@"
}
