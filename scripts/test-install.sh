#!/usr/bin/env bash
# Installs a build into an empty folder, moves that folder, and builds and runs a program of its own against it: once
# through CMake, once through pkg-config. The program and the installed command fetch a file from a local web server.
# A project that asks for another version, or lacks one of vantra's dependencies, is told so.
#
#     scripts/test-install.sh [BUILD]      default build/debug, built before
# shellcheck source=scripts/lib.sh
. "$(dirname "$0")/lib.sh"

build=${1:-build/debug}
[ -f "$build/lib/libvantra.so" ] || die "$build holds no library: cmake --build --preset debug"

work=$(mktemp -d)
clean_up() {
    stop_pages
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
serve_pages "$work/pages"
page=$pages_url/page.txt

# fetches_page HOW COMMAND...
fetches_page() {
    local how=$1
    shift
    without_proxies "$@" "$page" >"$work/fetched" || die "the program built $how failed"
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

# tells WHAT TEXT OPTION...: the project, configured with the options, fails and says the text.
tells() {
    local what=$1 text=$2
    shift 2
    if cmake -S tests/install -B "$work/other" -G Ninja -DCMAKE_PREFIX_PATH="$prefix" "$@" >"$work/cmake.log" 2>&1; then
        die "a project $what was configured"
    fi
    # The message is broken into lines as it is shown.
    tr -s ' \n' ' ' <"$work/cmake.log" | grep -F -- "$text" >/dev/null || die "a project $what is not told '$text': $(cat "$work/cmake.log")"
    rm -rf "$work/other"
    say "A project $what is told so."
}
version=$(sed -nE 's/^#define VANTRA_VERSION "(.*)"$/\1/p' "$prefix/include/vantra/Version.h")
IFS=. read -r major minor _ <<<"$version"
[ -n "$minor" ] || die "the installed headers tell no version"
for other in "$major.$((minor + 1))" "$((major + 1)).0"; do
    tells "that asks for $other" "compatible with requested version \"$other\"" -DVANTRA_WANTED="$other"
    grep -qF "vantraConfig.cmake, version: $version" "$work/cmake.log" || die "the version found is not told: $(cat "$work/cmake.log")"
    if PKG_CONFIG_PATH=$pkgconfig pkg-config --exists "vantra >= $other"; then die "pkg-config finds vantra $other"; fi
done
tells "without libcurl" "Could NOT find CURL" -DCMAKE_IGNORE_PATH="$(pkg-config --variable=includedir libcurl)"
tells "without wxWidgets" "Could NOT find wxWidgets" -DwxWidgets_CONFIG_EXECUTABLE="$(command -v false)"

fetches_page "by vantra's own build" "$prefix/bin/vantra" get
