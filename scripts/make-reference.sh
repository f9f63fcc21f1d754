#!/usr/bin/env bash
# Makes the reference of the public interface, as web pages, from the headers and the documents. Fails if a public name
# has no comment, or if a comment or a document names something that is not there.
#
#     scripts/make-reference.sh [FOLDER]      default build/reference
# shellcheck source=scripts/lib.sh
. "$(dirname "$0")/lib.sh"

output=${1:-build/reference}
version=$(sed -nE 's/^project\(vantra VERSION ([0-9.]+) .*/\1/p' CMakeLists.txt)
[ -n "$version" ] || die "CMakeLists.txt names no version"
mapfile -t input < <(tree_files 'include/vantra/*.h' 'kel/include/kel/*.h' README.md 'docs/*.md')
[ ${#input[@]} -gt 0 ] || die "no headers found"

rm -rf "$output"
mkdir -p "$output"
settings=$(<docs/Doxyfile.in)
settings=${settings//@VERSION@/$version}
settings=${settings//@INPUT@/${input[*]}}
settings=${settings//@STRIP@/include kel/include}
settings=${settings//@OUTPUT@/$output}
settings=${settings//@WARNINGS@/$output/warnings.txt}
doxygen - <<<"$settings" >"$output/doxygen.log" 2>&1 || die "doxygen failed: $(tail -n 20 "$output/doxygen.log")"

pages=$(find "$output/html" -name 'classvantra_*.html' | wc -l)
[ "$pages" -ge 20 ] || die "the reference has only $pages pages of classes"
if [ -s "$output/warnings.txt" ]; then
    cat "$output/warnings.txt" >&2
    die "the reference has $(wc -l <"$output/warnings.txt") warnings"
fi
say "The reference, $output/html/index.html, is made of ${#input[@]} files without a warning."
