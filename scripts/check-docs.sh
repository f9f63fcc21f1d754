#!/usr/bin/env bash
# The documents are true: what they show is in the tree, links lead somewhere, every public name has a comment, and the
# steps of docs/getting-started.md work as they are written, in a copy of the tree that knows nothing of this one.
# What they show of outputs, the tests labelled "examples" compare.
#
#     scripts/check-docs.sh
# shellcheck source=scripts/lib.sh
. "$(dirname "$0")/lib.sh"

scripts/check-documents.py
scripts/make-reference.sh

guide=docs/getting-started.md
work=$(mktemp -d)
clean_up() {
    stop_pages
    rm -rf "$work"
}
trap clean_up EXIT

mkdir "$work/clone" "$work/home" "$work/first" "$work/pages"
tree_files . | tar -c -T - | tar -x -C "$work/clone"

mapfile -d '' -t commands < <(scripts/check-documents.py --blocks sh "$guide")
mapfile -d '' -t programs < <(scripts/check-documents.py --blocks cpp "$guide")
mapfile -d '' -t projects < <(scripts/check-documents.py --blocks cmake "$guide")
[ "${#commands[@]} ${#programs[@]} ${#projects[@]}" = "3 1 1" ] ||
    die "$guide should have three blocks of commands, a program and a CMakeLists.txt"
printf '%s' "${programs[0]}" >"$work/first/first.cpp"
printf '%s' "${projects[0]}" >"$work/first/CMakeLists.txt"

head -c 4321 /dev/zero >"$work/pages/page"
serve_pages "$work/pages"

# follow FOLDER COMMANDS: runs the commands as a reader would, but for the page that they fetch.
follow() {
    local script=${2//https:\/\/www.debian.org\//$pages_url/page}
    (
        cd "$1"
        # What an earlier run compiled need not be compiled again.
        without_proxies -u DESTDIR HOME="$work/home" CCACHE_DIR="$ccache" \
            CCACHE_BASEDIR="$work/clone" CCACHE_NOHASHDIR=true CXXFLAGS= bash -euc "$script"
    ) >"$work/log" 2>&1 || die "these lines of $guide do not work:
$2
$(tail -n 40 "$work/log")"
}

ccache=$(ccache --get-config cache_dir 2>/dev/null || true)
follow "$work/clone" "${commands[0]}"
for i in 1 2; do
    follow "$work/first" "${commands[i]}"
    [ "$(tail -n 1 "$work/log")" = "4321 bytes" ] ||
        die "the program of $guide printed: $(tail -n 1 "$work/log")"
done
say "The steps of $guide work."
