#!/usr/bin/env bash
# The shared library exports the public classes and functions, nothing else, and can be found by its plain name. kel,
# beside it, exports nothing but its own either.
#
#     scripts/check-exports.sh [BUILD]      BUILD, default build/debug, holds the built library
# shellcheck source=scripts/lib.sh
. "$(dirname "$0")/lib.sh"

build=${1:-build/debug}
library=$build/lib/libvantra.so

# exports LIBRARY NAMESPACE: prints what the library exports. Dies if any of it is in another namespace.
exports() {
    local symbols foreign
    [ -f "$1" ] || die "$1 is not built"
    symbols=$(nm --dynamic --defined-only --demangle --format=bsd "$1" | sed -E 's/^[0-9a-f]+ . //' | sort -u)
    foreign=$(grep -vE "^((typeinfo|typeinfo name|vtable|VTT|guard variable|(non-)?virtual thunk|covariant return thunk) (for|to) )?$2::" <<<"$symbols") || true
    [ -z "$foreign" ] || die "$1 exports what is not the library's own:
$foreign"
    printf '%s\n' "$symbols"
}
exported=$(exports "$library" vantra)
exports "$build/lib/libkel.so" kel >/dev/null

# What the headers mark must be there: of a class with a base, what catching and casting need; of another, a member; a
# function itself. Interfaces (IFoo) are whole in their headers.
headers=(include/vantra/*.h)
mapfile -t classes < <(sed -nE 's/^ *(class|struct) VANTRA_API ([A-Za-z_:0-9]+)( : )?.*/\2\3/p' "${headers[@]}")
mapfile -t functions < <(sed -nE 's/^(\[\[[a-z]+\]\] )?VANTRA_API [^(]*[ *&]([A-Za-z_0-9]+)\(.*/\2/p' "${headers[@]}" | sort -u)
[ ${#classes[@]} -ge 10 ] || die "only ${#classes[@]} exported classes found in the headers"
missing=()
for class in "${classes[@]}"; do
    name=${class% : }
    name=${name##*::}
    case $name in I[A-Z]*) continue ;; esac
    wanted="vantra::([A-Za-z_0-9]+::)*$name::"
    [ "$class" = "${class% : }" ] || wanted="typeinfo for vantra::([A-Za-z_0-9]+::)*$name\$"
    grep -qE "^$wanted" <<<"$exported" || missing+=("${wanted%\$}")
done
for function in "${functions[@]}"; do
    grep -qE "^vantra::$function(\[abi:cxx11\])?\(" <<<"$exported" || missing+=("vantra::$function(")
done
if [ ${#missing[@]} -ne 0 ]; then
    printf '%s\n' "${missing[@]}" >&2
    die "$library does not export what the headers declare; the expressions above match no symbol"
fi

version=$(sed -nE 's/^CMAKE_PROJECT_VERSION:STATIC=//p' "$build/CMakeCache.txt")
dynamic=$(readelf --dynamic --wide "$library")
soname=$(sed -nE 's/.*\(SONAME\).*\[(.*)\]/\1/p' <<<"$dynamic")
[ "$soname" = "libvantra.so.${version%%.*}" ] || die "the soname is '$soname', not libvantra.so.${version%%.*}"

# The library finds kel beside itself in the build folder; any other place it searched would be somebody else's.
runpath=$(sed -nE 's/.*\((RUNPATH|RPATH)\).*\[(.*)\]/\2/p' <<<"$dynamic")
own=$(realpath "$build/lib")
while IFS= read -r place; do
    [ "$place" = "$own" ] || [ "$place" = "\$ORIGIN" ] || die "the library searches '$place' for other libraries"
done < <(tr ':' '\n' <<<"${runpath%:}")

say "$soname exports $(wc -l <<<"$exported") symbols, all its own, for the ${#classes[@]} classes and ${#functions[@]} functions of the headers."
