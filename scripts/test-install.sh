#!/usr/bin/env bash
# Installs a build into an empty folder, moves that folder, and builds and runs a program of its own against it: once
# through CMake, once through pkg-config. The program and the installed command fetch a file from a local web server.
#
#     scripts/test-install.sh [BUILD]      default build/debug, built before
# shellcheck source=scripts/lib.sh
. "$(dirname "$0")/lib.sh"

build=${1:-build/debug}
[ -f "$build/lib/libvantra.so" ] || die "$build holds no library: cmake --build --preset debug"

work=$(mktemp -d)
server_pid=
clean_up() {
    if [ -n "$server_pid" ] && kill "$server_pid" 2>/dev/null; then wait "$server_pid" 2>/dev/null || true; fi
    rm -rf "$work"
}
trap clean_up EXIT

cmake --install "$build" --prefix "$work/installed" >"$work/install.log"
mv "$work/installed" "$work/moved"
prefix=$work/moved
pkgconfig=$(dirname "$(find "$prefix" -name vantra.pc)")
libraries=$(dirname "$pkgconfig")
for file in include/vantra/vantra.h include/vantra/Version.h include/kel/String.h include/kel/SocketSets.h bin/vantra \
    share/man/man1/vantra.1 share/bash-completion/completions/vantra; do
    [ -f "$prefix/$file" ] || die "$file was not installed"
done
[ ! -e "$prefix/include/sigil" ] || die "headers of an internal library were installed"

soname=$(objdump -p "$libraries/libvantra.so" | awk '$1 == "SONAME" { print $2 }')
[ "$soname" = libvantra.so.0 ] || die "the library's SONAME is '$soname'"

mkdir "$work/pages"
head -c 100000 /dev/urandom | base64 >"$work/pages/page.txt"
/usr/bin/python3 -u -m http.server --bind 127.0.0.1 --directory "$work/pages" 0 >"$work/server.log" 2>&1 &
server_pid=$!
port=
for _ in {1..100}; do
    port=$(sed -nE 's/^Serving HTTP on .* port ([0-9]+) .*/\1/p' "$work/server.log")
    [ -z "$port" ] || break
    sleep 0.1
done
[ -n "$port" ] || die "the web server did not start: $(cat "$work/server.log")"
page=http://127.0.0.1:$port/page.txt

# fetches_page HOW COMMAND...
fetches_page() {
    local how=$1
    shift
    env -u http_proxy -u all_proxy -u ALL_PROXY "$@" "$page" >"$work/fetched" || die "the program built $how failed"
    cmp "$work/pages/page.txt" "$work/fetched" || die "the program built $how fetched something else"
    say "The program built $how fetched the page."
}

cmake -S tests/install -B "$work/project" -G Ninja -DCMAKE_PREFIX_PATH="$prefix" -DCMAKE_BUILD_TYPE=Debug >"$work/cmake.log" ||
    die "the project was not configured: $(cat "$work/cmake.log")"
cmake --build "$work/project"
fetches_page "through CMake" "$work/project/fetch"

# shellcheck disable=SC2046  # the flags are words
g++ -std=c++20 -Wall -Wextra -Werror -o "$work/fetch" tests/install/main.cpp \
    $(PKG_CONFIG_PATH=$pkgconfig pkg-config --cflags --libs vantra)
fetches_page "through pkg-config" env LD_LIBRARY_PATH="$libraries" "$work/fetch"

fetches_page "by vantra's own build" "$prefix/bin/vantra" get
