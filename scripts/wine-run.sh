#!/usr/bin/env bash
# Runs a 64-bit Windows program under Wine, without a display.
#
#     scripts/wine-run.sh PROGRAM.exe [ARGUMENT...]
#
# The DLLs that the program needs have to be beside it. The Wine prefix, made by the first call, is $WINEPREFIX or
# ${XDG_CACHE_HOME:-~/.cache}/vantra-wine.
set -euo pipefail

wine=(/usr/lib/wine/wine64)
server=/usr/lib/wine/wineserver64
if [ ! -x "${wine[0]}" ]; then
    printf '%s\n' "wine-run.sh: ${wine[0]} is missing: scripts/install-deps.sh windows" >&2
    exit 1
fi
# At fixed addresses, where the system lets: else one start in some thousands has its heap where Wine puts what all its
# programs share, and ends with status 1 and no word.
if setarch --addr-no-randomize true 2>/dev/null; then wine=(setarch --addr-no-randomize "${wine[@]}"); fi

export WINEPREFIX=${WINEPREFIX:-${XDG_CACHE_HOME:-$HOME/.cache}/vantra-wine} WINEARCH=win64
export WINEDEBUG=${WINEDEBUG:--all}
# No .NET, no browser engine, no menu entries: nothing here uses them, and making the prefix would wait for them.
export WINEDLLOVERRIDES=${WINEDLLOVERRIDES:-mscoree,mshtml,winemenubuilder.exe=}
unset DISPLAY

# make_prefix: with the crash debugger switched off, without which a program that crashes ends with status 0.
make_prefix() {
    local crash_debugger='HKLM\Software\Microsoft\Windows NT\CurrentVersion\AeDebug'
    "${wine[@]}" wineboot --update &&
        "${wine[@]}" reg add "$crash_debugger" /v Auto /t REG_SZ /d 0 /f &&
        "${wine[@]}" reg add "$crash_debugger" /v Debugger /t REG_SZ /d "" /f &&
        touch "$WINEPREFIX/.ready"
}

# start_session: with Wine's server and services, which stay for a while, started apart from the program: those that it
# starts would keep its output open, and whoever reads that would wait for them. The server ends with status 2 if one
# runs already.
start_session() {
    local status=0
    mkdir -p "$WINEPREFIX"
    "$server" -p60 || status=$?
    if [ $status -ne 0 ] && [ $status -ne 2 ]; then return $status; fi
    if [ ! -e "$WINEPREFIX/.ready" ]; then
        make_prefix
    elif [ $status -eq 0 ]; then
        "${wine[@]}" wineboot
    fi
}

mkdir -p "$(dirname "$WINEPREFIX")"
(
    flock 9
    # Nothing that stays may inherit the lock.
    start_session >"$WINEPREFIX.log" 2>&1 </dev/null 9>&- || {
        printf '%s\n' "wine-run.sh: Wine could not be started in the prefix $WINEPREFIX:" "$(cat "$WINEPREFIX.log")" >&2
        exit 1
    }
) 9>"$WINEPREFIX.lock"
exec "${wine[@]}" "$@"
