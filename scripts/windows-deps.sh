#!/usr/bin/env bash
# Builds the libraries that vantra stands on for 64-bit Windows, from Debian's source packages, into a cache outside of
# the tree. Does nothing, quickly, when they are there. Needs no root's rights and changes nothing under /etc.
#
#     scripts/windows-deps.sh              builds what is missing, prints the folder
#     scripts/windows-deps.sh --where      prints the folder; fails if it is not built
#
# OpenSSL, expat and libcurl become static libraries, for vantra.dll to hold; wxWidgets' string class crosses the DLL's
# boundary, so wxWidgets stays shared. GoogleTest and the headers of CLI11 and nlohmann-json are those of this system's
# packages.
#
#     VANTRA_WINDOWS_CACHE    folder of the cache, default ${XDG_CACHE_HOME:-~/.cache}/vantra-windows
#     VANTRA_DEBIAN_MIRROR    where the source packages come from; default the one that this system's apt uses
# shellcheck source=scripts/lib.sh
. "$(dirname "$0")/lib.sh"

# The exact sources, so that the name of the cache can be told without asking a server.
suite=bookworm
sources=(openssl=3.0.20-1~deb12u2 curl=7.88.1-10+deb12u15 expat=2.5.0-1+deb12u2 wxwidgets3.2=3.2.2+dfsg-2)

# libcurl puts as many sockets into an fd_set, whatever its caller meant by one: no more than cmake/VantraBuild.cmake says.
socket_set_size=1024

for command in x86_64-w64-mingw32-g++-posix dpkg-source cmake ninja perl make; do
    command -v "$command" >/dev/null || die "$command is missing: scripts/install-deps.sh build test windows"
done
[ -f /usr/src/googletest/CMakeLists.txt ] || die "GoogleTest's sources are missing: scripts/install-deps.sh test"
for header in CLI/CLI.hpp nlohmann/json.hpp; do
    [ -f /usr/include/$header ] || die "the header $header is missing: scripts/install-deps.sh build"
done

tree=$PWD
cache=${VANTRA_WINDOWS_CACHE:-${XDG_CACHE_HOME:-$HOME/.cache}/vantra-windows}
versions=$(printf '%s\n' "${sources[@]}"
    dpkg-query --show --showformat='${Package}=${Version}\n' googletest libcli11-dev nlohmann-json3-dev g++-mingw-w64-x86-64-posix mingw-w64-x86-64-dev
    # And how they are built: this file and the toolchain, but for comments.
    sed -E '/^ *#/d' scripts/windows-deps.sh cmake/mingw-w64-x86_64.cmake | sha256sum)
prefix=$cache/$(sha256sum <<<"$versions" | cut -c 1-16)

# Dies if the finished prefix is not what was built.
check_prefix() {
    local wrong
    wrong=$(cd "$prefix" && sha256sum --check --quiet MANIFEST 2>&1) ||
        die "the libraries built for Windows in $prefix are damaged; delete that folder to have them built again:
$wrong"
}

case ${1-} in
'') ;;
--where)
    [ -d "$prefix" ] || die "the libraries for Windows are not built: scripts/windows-deps.sh"
    printf '%s\n' "$prefix"
    exit 0
    ;;
*) die "unknown argument '$1'; there is --where" ;;
esac

mkdir -p "$cache" || die "the cache folder $cache cannot be made"
exec 9>"$prefix.lock" || die "the cache folder $cache cannot be written to"
flock 9
if [ -e "$prefix" ]; then
    check_prefix
    printf '%s\n' "$prefix"
    exit 0
fi

# Standard output is for the folder alone.
exec 3>&1 1>&2
work=$cache/work
new=$prefix.new
rm -rf "$work" "$new"
mkdir -p "$work/src" "$work/lists/partial" "$work/log" "$new"

# build_step NAME COMMAND...
build_step() {
    local name=$1 begin=$SECONDS status=0
    shift
    # A subshell of its own: inside a condition a failing command would not end it.
    set +e
    (
        set -e
        cd "$work"
        "$@"
    ) >"$work/log/$name.log" 2>&1 </dev/null
    status=$?
    set -e
    if [ $status -ne 0 ]; then
        tail -n 20 "$work/log/$name.log"
        die "building the libraries for Windows failed at '$name'; the whole log is $work/log/$name.log"
    fi
    say "$name: $((SECONDS - begin)) s"
}

fetch_sources() {
    local mirror=${VANTRA_DEBIAN_MIRROR-}
    [ -n "$mirror" ] || mirror=$(debian_mirror "$suite")
    [ -n "$mirror" ] || mirror=http://deb.debian.org/debian
    echo "deb-src [signed-by=/usr/share/keyrings/debian-archive-keyring.gpg] $mirror $suite main" >"$work/sources.list"
    local apt=(apt-get -q -o Dir::Etc::SourceList="$work/sources.list" -o Dir::Etc::SourceParts=/dev/null
        -o Dir::State::Lists="$work/lists" -o APT::Sandbox::User=root -o Acquire::Retries=3)
    "${apt[@]}" -o APT::Update::Error-Mode=any update
    cd "$work/src"
    local source
    for source in "${sources[@]}"; do
        if ! "${apt[@]}" source "$source"; then
            echo "The source package $source could not be fetched from $mirror, suite $suite. If the suite has another"
            echo "version by now, name it in scripts/windows-deps.sh."
            return 1
        fi
    done
    # The CMake build of this version leaves parameter entities undecided.
    sed -i 's/#cmakedefine XML_DTD$/#cmakedefine XML_DTD 1/' "$work"/src/expat-*/expat/expat_config.h.cmake
}

build_openssl() {
    mkdir openssl
    cd openssl
    perl "$work"/src/openssl-3*/Configure mingw64 --cross-compile-prefix=x86_64-w64-mingw32- --prefix="$new" \
        --libdir=lib --openssldir=/nonexistent no-shared no-tests no-module no-engine no-ui-console
    make -j"$CMAKE_BUILD_PARALLEL_LEVEL" build_libs
    make install_dev
}

# build_with_cmake NAME SOURCE OPTION...
build_with_cmake() {
    local name=$1 source=$2
    shift 2
    cmake -S "$source" -B "$name" -G Ninja -DCMAKE_BUILD_TYPE=Release \
        -DCMAKE_TOOLCHAIN_FILE="$tree/cmake/mingw-w64-x86_64.cmake" -DVANTRA_WINDOWS_PREFIX="$new" \
        -DCMAKE_INSTALL_PREFIX="$new" "$@"
    cmake --build "$name"
    cmake --install "$name"
}

copy_header_libraries() {
    mkdir -p "$new/include" "$new/share/cmake"
    cp -r /usr/include/CLI "$new/include/"
    cp -r /usr/include/nlohmann "$new/include/"
    cp -r /usr/share/cmake/CLI11 /usr/share/cmake/nlohmann_json "$new/share/cmake/"
}

renice -n 5 $$ >/dev/null
begin=$SECONDS
build_step fetch fetch_sources
build_step openssl build_openssl
build_step expat build_with_cmake expat "$(echo "$work"/src/expat-*/expat)" -DEXPAT_BUILD_TOOLS=OFF \
    -DEXPAT_BUILD_EXAMPLES=OFF -DEXPAT_BUILD_TESTS=OFF -DEXPAT_BUILD_DOCS=OFF -DEXPAT_SHARED_LIBS=OFF
build_step googletest build_with_cmake googletest /usr/src/googletest -DCMAKE_CXX_STANDARD=20
build_step curl build_with_cmake curl "$(echo "$work"/src/curl-*.*.*/)" -DBUILD_CURL_EXE=OFF -DBUILD_TESTING=OFF \
    -DBUILD_SHARED_LIBS=OFF -DENABLE_UNICODE=ON -DCMAKE_C_FLAGS=-DFD_SETSIZE=$socket_set_size -DCURL_USE_OPENSSL=ON -DCURL_ZLIB=OFF -DCURL_USE_LIBSSH2=OFF -DUSE_NGHTTP2=OFF \
    -DCURL_CA_BUNDLE=none -DCURL_CA_PATH=none -DUSE_LIBIDN2=OFF -DCURL_BROTLI=OFF -DCURL_ZSTD=OFF -DCURL_DISABLE_LDAP=ON -DCURL_DISABLE_LDAPS=ON
build_step wxwidgets build_with_cmake wxwidgets "$(echo "$work"/src/wxwidgets3.2-*/)" -DwxBUILD_SHARED=ON \
    -DwxUSE_GUI=OFF -DwxBUILD_MONOLITHIC=OFF -DwxUSE_XML=ON -DwxUSE_EXPAT=sys -DwxUSE_ZLIB=OFF -DwxUSE_REGEX=OFF \
    -DwxUSE_WEBREQUEST=OFF -DwxUSE_SOCKETS=OFF -DwxUSE_PROTOCOL=OFF -DwxUSE_PROTOCOL_HTTP=OFF \
    -DwxUSE_PROTOCOL_FTP=OFF -DwxUSE_PROTOCOL_FILE=OFF -DwxUSE_URL=OFF -DwxUSE_FS_INET=OFF -DwxUSE_IPC=OFF \
    -DwxUSE_WINSOCK2=ON -DwxBUILD_PRECOMP=OFF -DwxBUILD_CXX_STANDARD=20 -DCMAKE_CXX_FLAGS=-DXML_STATIC
build_step headers copy_header_libraries

printf '%s\n' "$versions" >"$new/VERSIONS"
# shellcheck disable=SC2094  # the list does not hold itself
(cd "$new" && find . -type f ! -name MANIFEST -print0 | sort -z | xargs -0 sha256sum >MANIFEST)
mv "$new" "$prefix"
rm -rf "$work"
say "The libraries for Windows were built in $((SECONDS - begin)) s: $(du -sh "$prefix" | cut -f 1) in $prefix"
printf '%s\n' "$prefix" >&3
