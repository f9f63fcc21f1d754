#!/usr/bin/env bash
# Runs a 64-bit Windows program under Wine, without a display.
#
#     scripts/wine-run.sh PROGRAM.exe [ARGUMENT...]
#
# The DLLs that the program needs have to be beside it. The Wine prefix, made by the first call, is $WINEPREFIX or
# ${XDG_CACHE_HOME:-~/.cache}/vantra-wine.
set -euo pipefail

wine=/usr/lib/wine/wine64
if [ ! -x "$wine" ]; then
    printf '%s\n' "wine-run.sh: $wine is missing: scripts/install-deps.sh windows" >&2
    exit 1
fi

export WINEPREFIX=${WINEPREFIX:-${XDG_CACHE_HOME:-$HOME/.cache}/vantra-wine} WINEARCH=win64
export WINEDEBUG=${WINEDEBUG:--all}
# No .NET, no browser engine, no menu entries: nothing here uses them, and making the prefix would wait for them.
export WINEDLLOVERRIDES=${WINEDLLOVERRIDES:-mscoree,mshtml,winemenubuilder.exe=}
unset DISPLAY

# make_prefix: with the crash debugger switched off, without which a program that crashes ends with status 0.
make_prefix() {
    local crash_debugger='HKLM\Software\Microsoft\Windows NT\CurrentVersion\AeDebug'
    "$wine" wineboot --update &&
        "$wine" reg add "$crash_debugger" /v Auto /t REG_SZ /d 0 /f &&
        "$wine" reg add "$crash_debugger" /v Debugger /t REG_SZ /d "" /f &&
        touch "$WINEPREFIX/.ready"
}

if [ ! -e "$WINEPREFIX/.ready" ]; then
    mkdir -p "$(dirname "$WINEPREFIX")"
    (
        flock 9
        if [ ! -e "$WINEPREFIX/.ready" ]; then
            # Wine's server, which stays for a while, must not inherit the lock.
            make_prefix >"$WINEPREFIX.log" 2>&1 </dev/null 9>&- || {
                printf '%s\n' "wine-run.sh: the Wine prefix $WINEPREFIX could not be made, see $WINEPREFIX.log" >&2
                exit 1
            }
        fi
    ) 9>"$WINEPREFIX.lock"
fi
exec "$wine" "$@"
