#!/usr/bin/env bash
# vantra.dll exports what libvantra.so does, and its DLLs and programs need nothing but each other and Windows.
#
#     scripts/check-windows-exports.sh [BUILD [LINUX-BUILD]]      default build/windows-x64 and build/debug, built before
# shellcheck source=scripts/lib.sh
. "$(dirname "$0")/lib.sh"

build=${1:-build/windows-x64}
linux_build=${2:-build/debug}
objdump=x86_64-w64-mingw32-objdump
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

for file in "$build/bin/vantra.dll" "$build/bin/kel.dll" "$linux_build/lib/libvantra.so"; do
    [ -f "$file" ] || die "$file is not built"
done

# Names in C++. 64-bit integers, sizes among them, are called "long" on one system and "long long" on the other.
same_integers() { sed -E 's/long long/long/g'; }

# What only one of them exports, and why:
# - Tables, thunks and guards that the compiler makes for objects with virtual members. On Windows those outside of the
#   DLL have a copy of their own, or reach them through another table.
# - The names of types. On Windows types are told apart by the text of the name, whichever copy it is.
# - Classes and members private to the library. On Linux what is inside of an exported class is exported with it.
# - The types of interfaces and other classes that are whole in their headers: each side may bring its own copy.
compared() {
    grep -vE '^(VTT for|construction vtable for|guard variable for|(non-)?virtual thunk to|covariant return thunk to|typeinfo name for) ' |
        grep -vE '^((typeinfo|vtable) for )?vantra::(CAsyncNetRequestThread::CRemoveRequest|CNetRequest::CVerboseLogMessage|CNetRequest::CallbackTrampolines|CNetRequest::setText|CProxySettings::UserSettings)(::|\(|$)' |
        grep -vE '^(typeinfo|vtable) for vantra::([A-Za-z_0-9]+::)*I[A-Z][A-Za-z_0-9]*$' | sort -u
}

"$objdump" -p "$build/bin/vantra.dll" |
    sed -nE '/^\[Ordinal\/Name Pointer\] Table/,/^$/s/^[[:space:]]*\[ *[0-9]+\] (\+base\[ *[0-9]+\] +[0-9a-f]+ )?//p' |
    c++filt | same_integers | compared >"$work/dll"
nm --dynamic --defined-only --demangle --format=bsd "$linux_build/lib/libvantra.so" | sed -E 's/^[0-9a-f]+ . //' |
    same_integers | compared >"$work/so"
[ "$(wc -l <"$work/dll")" -gt 100 ] || die "vantra.dll exports only $(wc -l <"$work/dll") names"
comm -23 "$work/so" "$work/dll" >"$work/missing"
comm -13 "$work/so" "$work/dll" >"$work/more"
if [ -s "$work/missing" ] || [ -s "$work/more" ]; then
    sed 's/^/only in libvantra.so: /' "$work/missing" >&2
    sed 's/^/only in vantra.dll:   /' "$work/more" >&2
    die "vantra.dll and libvantra.so export different names"
fi

# Every DLL of Windows that ours may need: the system's calls, sockets, certificates, HTTP services, the shell and the
# C runtime that every Windows brings.
system=' advapi32.dll bcrypt.dll comctl32.dll comdlg32.dll crypt32.dll gdi32.dll kernel32.dll msvcrt.dll ole32.dll
    oleaut32.dll rpcrt4.dll shell32.dll shlwapi.dll user32.dll version.dll winhttp.dll winmm.dll ws2_32.dll '
shipped=(vantra.exe vantra.dll kel.dll)
for ((i = 0; i < ${#shipped[@]}; ++i)); do
    file=$build/bin/${shipped[i]}
    [ -f "$file" ] || die "${shipped[*]: -1} is needed, but neither a DLL of Windows nor shipped"
    needed=$("$objdump" -p "$file" | sed -nE 's/^[[:space:]]*DLL Name: (.*)/\1/p')
    for dll in $needed; do
        if [[ ${system//$'\n'/ } = *" ${dll,,} "* || " ${shipped[*]} " = *" $dll "* ]]; then continue; fi
        [ -f "$build/bin/$dll" ] || die "${shipped[i]} needs $dll, which is neither Windows' nor shipped"
        shipped+=("$dll")
    done
done

say "vantra.dll exports the $(wc -l <"$work/dll") names of libvantra.so. Shipped and complete: ${shipped[*]}"
