#!/usr/bin/env bash
# The tree's texts stand on their own: no file and no commit message refers to a document that its reader does not have.
# shellcheck source=scripts/lib.sh
. "$(dirname "$0")/lib.sh"

# Put together from pieces, so that this file does not match itself.
document=spec
pattern="\\bpart [1-8]\\.[1-5]\\b|\\bthe $document(ification)?\\b|$document\\.md"

# find_words COMMAND...: the lines that a grep finds. Finding none is no failure, but a grep that did not work is.
find_words() {
    local status=0
    "$@" || status=$?
    # xargs makes 123 of grep's 1
    [ $status -eq 0 ] || [ $status -eq 1 ] || [ $status -eq 123 ] || die "the search failed (status $status)"
}

mapfile -t files < <(tree_files .)
[ ${#files[@]} -gt 0 ] || die "no files found"
found=$(printf '%s\n' "${files[@]}" | find_words xargs -d '\n' grep -HnIiE "$pattern" --)
[ -z "$found" ] || die "these lines refer to a document outside of the tree:
$found"

commits=0
if git rev-parse --quiet --verify HEAD >/dev/null; then
    commits=$(git rev-list --count HEAD)
    found=$(git log --format='%h %B' | find_words grep -niE "$pattern")
    [ -z "$found" ] || die "these lines of commit messages refer to a document outside of the tree:
$found"
fi
say "No forbidden words in ${#files[@]} files and $commits commit messages."
