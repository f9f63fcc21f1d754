#!/usr/bin/env bash
# Packs a build for Windows into its .zip, unpacks that elsewhere, and builds and runs a program of its own against it
# under Wine. That program and the packed command fetch a file from a local web server; the command does so over TLS,
# too, where it trusts what the package's root certificates say.
#
#     scripts/test-windows-package.sh [BUILD]      default build/windows-x64, built before
# shellcheck source=scripts/lib.sh
. "$(dirname "$0")/lib.sh"

build=${1:-build/windows-x64}
[ -f "$build/bin/vantra.dll" ] || die "$build holds no library: cmake --build --preset windows-x64"

work=$(mktemp -d)
servers=()
clean_up() {
    local server
    for server in "${servers[@]}"; do
        if kill "$server" 2>/dev/null; then wait "$server" 2>/dev/null || true; fi
    done
    rm -rf "$work"
}
trap clean_up EXIT

cpack --config "$build/CPackConfig.cmake" -B "$work/pack" >"$work/cpack.log" || die "packing failed: $(cat "$work/cpack.log")"
zip=$(echo "$work"/pack/*.zip)
[ -f "$zip" ] || die "there is no .zip: $(cat "$work/cpack.log")"
cmake -E make_directory "$work/unpacked"
(cd "$work/unpacked" && cmake -E tar xf "$zip")
prefix=$(echo "$work"/unpacked/vantra-*)
for file in bin/{vantra.exe,vantra.dll,kel.dll} bin/resources/vantra/ca-bundle.crt include/vantra/{vantra,Version}.h \
    include/kel/{String,SocketSets}.h include/curl/curl.h include/wx/string.h lib/cmake/vantra/vantraConfig.cmake; do
    [ -f "$prefix/$file" ] || die "$file is not in the package"
done
[ ! -e "$prefix/include/sigil" ] || die "headers of an internal library are in the package"

version=$(sed -nE 's/^CMAKE_PROJECT_VERSION:STATIC=//p' "$build/CMakeCache.txt")
for file in vantra.exe vantra.dll kel.dll; do
    # The text is stored with two bytes for a character.
    [ "$(tr -d '\0' <"$prefix/bin/$file" | grep -ac "FileVersion$version")" -gt 0 ] || die "$file does not tell its version"
done

mkdir "$work/pages"
head -c 100000 /dev/urandom | base64 >"$work/pages/page.txt"
openssl req -x509 -newkey rsa:2048 -nodes -days 2 -subj /CN=localhost -addext subjectAltName=DNS:localhost,IP:127.0.0.1 \
    -keyout "$work/key.pem" -out "$work/cert.pem" 2>"$work/openssl.log" || die "no certificate: $(cat "$work/openssl.log")"
cat >"$work/server.py" <<'SERVER'
import functools, http.server, ssl, sys
folder, certificate, key = sys.argv[1:]
handler = functools.partial(http.server.SimpleHTTPRequestHandler, directory=folder)
server = http.server.ThreadingHTTPServer(("127.0.0.1", 0), handler)
if certificate:
    context = ssl.SSLContext(ssl.PROTOCOL_TLS_SERVER)
    context.load_cert_chain(certificate, key)
    server.socket = context.wrap_socket(server.socket, server_side=True)
print(server.server_port, flush=True)
server.serve_forever()
SERVER

# start_server NAME [CERTIFICATE KEY]: sets port.
start_server() {
    local attempt
    : >"$work/$1.port"
    /usr/bin/python3 "$work/server.py" "$work/pages" "${2-}" "${3-}" >"$work/$1.port" 2>"$work/$1.log" &
    servers+=($!)
    for attempt in {1..100}; do
        port=$(cat "$work/$1.port")
        [ -z "$port" ] || return 0
        sleep 0.1
    done
    die "the $1 server did not start in $attempt attempts: $(cat "$work/$1.log")"
}
start_server plain
page=http://127.0.0.1:$port/page.txt
start_server tls "$work/cert.pem" "$work/key.pem"
tls_page=https://127.0.0.1:$port/page.txt

# fetches_page HOW PROGRAM ARGUMENT...
fetches_page() {
    local how=$1
    shift
    scripts/wine-run.sh "$@" >"$work/fetched" || die "the program $how failed"
    # That program writes text, whose lines end as the system's do; the command writes bytes.
    case $1 in */fetch.exe) sed -i 's/\r$//' "$work/fetched" ;; esac
    cmp "$work/pages/page.txt" "$work/fetched" || die "the program $how fetched something else"
    say "The program $how fetched the page."
}

# refuses_tls WHAT TEXT: the packed command fails, its error holds the text.
refuses_tls() {
    local what=$1 text=$2
    ! scripts/wine-run.sh "$prefix/bin/vantra.exe" get "$tls_page" >"$work/fetched" 2>"$work/error" ||
        die "the command accepted $what"
    grep -qF "$text" "$work/error" || die "the command's error about $what says something else: $(cat "$work/error")"
    say "The command refused $what: $(tr -d '\r' <"$work/error")"
}

toolchain=$PWD/cmake/mingw-w64-x86_64.cmake
for type in Debug Release; do
    cmake -S tests/install -B "$work/$type" -G Ninja -DCMAKE_TOOLCHAIN_FILE="$toolchain" -DCMAKE_BUILD_TYPE=$type \
        -Dvantra_DIR="$prefix/lib/cmake/vantra" >"$work/cmake.log" 2>&1 ||
        die "the project was not configured: $(cat "$work/cmake.log")"
    cmake --build "$work/$type"
    # A program finds the DLLs that lie beside it.
    cp "$work/$type/fetch.exe" "$prefix/bin/"
    fetches_page "built against the package ($type)" "$prefix/bin/fetch.exe" "$page"
done
fetches_page "of the package" "$prefix/bin/vantra.exe" get "$page"

refuses_tls "a certificate that no root of the bundle signed" "SSL"
cp "$work/cert.pem" "$prefix/bin/resources/vantra/ca-bundle.crt"
fetches_page "of the package, over TLS by the bundle beside it," "$prefix/bin/vantra.exe" get "$tls_page"
rm "$prefix/bin/resources/vantra/ca-bundle.crt"
refuses_tls "to go on without the bundle" "ca-bundle.crt"
fetches_page "of the package without its bundle" "$prefix/bin/vantra.exe" get "$page"
