#!/usr/bin/env bash
# The interface is the one that api/ records. For each shared library: what compiled programs see of it, which is the
# functions and variables exported, the layout of classes, their virtual functions and the values of enumerations. For
# the headers: the functions that they define themselves, templates excepted.
#
#     scripts/check-api.sh [BUILD]              BUILD, default build/debug, holds the built libraries
#     scripts/check-api.sh --renew [BUILD]      records the interface anew
#
# The records are of x86_64 and Debian 12's compiler and libraries.
# shellcheck source=scripts/lib.sh
. "$(dirname "$0")/lib.sh"

renew=
if [ "${1-}" = --renew ]; then
    renew=1
    shift
fi
build=${1:-build/debug}
for command in abidw abidiff c++filt; do
    command -v "$command" >/dev/null || die "$command is missing: scripts/install-deps.sh check"
done

# record_library LIBRARY FILE: writes what compiled programs see of the library.
record_library() {
    local library=$build/lib/$1.so silent
    [ -f "$library" ] || die "$library is not built"
    # A class that no public header defines is nobody else's business, though an exported function may take it. One
    # inside of a class is exported along with it.
    printf '%s\n' '[suppress_type]' 'source_location_not_regexp = (^|/)include(-posix)?/' \
        'name_regexp = ^(kel|vantra)::[A-Za-z0-9_]+$' 'drop = yes' >"$work/internal"
    abidw --suppressions "$work/internal" --exported-interfaces-only --drop-undefined-syms --no-corpus-path \
        --no-comp-dir-path --no-show-locs --no-elf-needed --no-parameter-names --type-id-style hash \
        --out-file "$2" "$library" || die "abidw failed"
    # A function that is but a symbol in the record could change its return type unseen. Compared by their readable
    # names, which the variants of a constructor share. Virtual tables and thunks (_ZT...), guards (_ZGV...) and the
    # variables of a function (_ZZ...) have no declaration.
    silent=$(comm -23 <(sed -nE "s/.*<elf-symbol name='(_Z[^']+)'.* type='func-type'.*/\1/p" "$2" | grep -vE '^_Z(T|GV|Z)' | c++filt | sort -u) \
        <(sed -nE "s/.* elf-symbol-id='([^']+)'.*/\1/p" "$2" | c++filt | sort -u))
    [ -z "$silent" ] || die "$library has no debug information of:
$silent"
}

# record_headers FILE: writes a line for each function that the public headers define.
record_headers() {
    local headers flags
    mapfile -t headers < <(find include/vantra "$build/include/vantra" kel/include/kel kel/include-posix/kel -name '*.h' |
        sed -E 's|.*/(kel/[^/]*)$|\1|;s|.*/(vantra/[^/]*)$|\1|' | sort -u)
    [ ${#headers[@]} -ge 20 ] || die "only ${#headers[@]} headers found"
    mapfile -t flags < <({ wx-config --cxxflags base xml && pkg-config --cflags libcurl; } | tr -s ' ' '\n' | sed '/^$/d')
    printf '#include <%s>\n' "${headers[@]}" |
        g++ -std=c++20 -O0 -fkeep-inline-functions -Iinclude -I"$build/include" -Ikel/include -Ikel/include-posix "${flags[@]}" \
            -x c++ -c -o "$work/headers.o" - || die "the public headers do not compile together"
    nm --defined-only --demangle --format=posix "$work/headers.o" >"$work/headers.nm"
    # A template's arguments stand in front of the parameters.
    sed -nE '/^[^(]*<[^(=<]/d;s/^((kel|vantra)::.*) [TWtw] [0-9a-f]+ [0-9a-f]*$/\1/p' "$work/headers.nm" | sort -u >"$1"
    [ "$(wc -l <"$1")" -ge 100 ] || die "only $(wc -l <"$1") functions found in the headers"
}

# compare RECORDED FOUND: shows in what they differ, and fails if they do.
compare() {
    case $1 in
    *.abi) abidiff --harmless --no-show-locs "$1" "$2" ;;
    *) diff -U 0 --label "$1" --label found "$1" "$2" ;;
    esac
}

work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
mkdir "$work/api"
record_library libkel "$work/api/libkel.abi"
record_library libvantra "$work/api/libvantra.abi"
record_headers "$work/api/headers.txt"
if [ -n "$renew" ]; then
    mkdir -p api
    cp "$work"/api/* api
    say "api/ records the interface."
    exit 0
fi

changed=()
for found in "$work"/api/*; do
    recorded=api/${found##*/}
    [ -f "$recorded" ] || die "$recorded is missing: scripts/check-api.sh --renew"
    compare "$recorded" "$found" || changed+=("$recorded")
done
[ ${#changed[@]} -eq 0 ] || die "the interface is not what is recorded in ${changed[*]}. If the change is meant, tell
users of it in CHANGELOG.md, and record it: scripts/check-api.sh --renew"
say "The interface is the one that api/ records."
