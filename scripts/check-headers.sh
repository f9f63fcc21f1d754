#!/usr/bin/env bash
# Every public header compiles alone, and twice in a row, without a warning, with both compilers. Headers of third
# parties are system headers, as for a careful user.
#
#     scripts/check-headers.sh [BUILD]      BUILD, default build/debug, holds the generated headers
# shellcheck source=scripts/lib.sh
. "$(dirname "$0")/lib.sh"

build=${1:-build/debug}
[ -f "$build/include/vantra/Version.h" ] || die "$build is not configured: cmake --preset debug"

declare -A roots=([include]=vantra ["$build/include"]=vantra [kel/include]=kel [kel/include-posix]=kel [sigil/include]=sigil)
headers=()
flags=(-std=c++20 -x c++ -fsyntax-only -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Werror)
for root in "${!roots[@]}"; do
    flags+=(-I "$root")
    while IFS= read -r header; do headers+=("${header#"$root"/}"); done < <(find "$root/${roots[$root]}" -name '*.h')
done
for flag in $(wx-config --cxxflags base xml) $(pkg-config --cflags libcurl openssl); do
    case $flag in
    -I*) flags+=(-isystem "${flag#-I}") ;;
    *) flags+=("$flag") ;;
    esac
done
[ ${#headers[@]} -ge 20 ] || die "only ${#headers[@]} headers found"

# shellcheck disable=SC2016  # the inner shell expands these
compile='
compiler=$1; header=${!#}; set -- "${@:2:$#-2}"
printf "#include \"%s\"\n#include \"%s\"\n" "$header" "$header" | "$compiler" "$@" - ||
    { echo "$header does not compile alone with $compiler" >&2; exit 1; }'
for compiler in g++ clang++; do
    printf '%s\n' "${headers[@]}" | sort |
        on_every_line_in_parallel bash -c "$compile" compile "$compiler" "${flags[@]}" ||
        die "public headers must compile alone"
done
say "${#headers[@]} public headers compile alone with g++ and clang++."
