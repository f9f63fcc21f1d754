#!/usr/bin/env bash
# Installs the Debian 12 packages that building and testing need. Does nothing, quickly, when they are all there.
# Services of the new packages are not started.
#
#     scripts/install-deps.sh [build|demo|test|bench|check|debs|coverage|windows|all]...      (default: all)
#
#     build     compiler, build tools and the libraries that vantra stands on
#     demo      what scripts/demo.sh needs beside that
#     test      GoogleTest and the servers that the tests start
#     bench     Google Benchmark and the server that the benchmarks start
#     check     clang and its tools, for the static checks
#     debs      what making the Debian packages and scripts/test-debs.sh need beside build
#     coverage  what scripts/coverage.sh needs beside build and test; not part of all
#     windows   the cross compiler for 64-bit Windows and Wine, beside build and test; not part of all
# shellcheck source=scripts/lib.sh
. "$(dirname "$0")/lib.sh"

build=(g++ cmake ninja-build make ccache pkg-config libwxgtk3.2-dev libcurl4-openssl-dev libssl-dev libcli11-dev
    nlohmann-json3-dev)
demo=(nginx-light openssl proftpd-core proftpd-mod-crypto python3-aiosmtpd python3-swift swift-proxy swift-account
    swift-container swift-object)
test=(libgtest-dev libgmock-dev openssl curl nginx-light libnginx-mod-http-echo tinyproxy-bin python3 python3-httpbin
    gunicorn proftpd-core proftpd-mod-crypto python3-pyftpdlib python3-openssl python3-aiosmtpd python3-swift swift-proxy
    swift-account swift-container swift-object libglib2.0-bin gsettings-desktop-schemas mandoc)
bench=(libbenchmark-dev nginx-light openssl proftpd-core proftpd-mod-crypto)
check=(git python3 clang clang-tidy clang-format libclang-rt-14-dev shellcheck util-linux doxygen abigail-tools)
debs=(dpkg-dev debootstrap lintian util-linux)
coverage=(gcovr)
windows=(g++-mingw-w64-x86-64-posix wine64 tmux dpkg-dev perl make googletest ca-certificates unzip)

packages=()
for group in "${@:-all}"; do
    case $group in
    build) packages+=("${build[@]}") ;;
    demo) packages+=("${demo[@]}") ;;
    test) packages+=("${test[@]}") ;;
    bench) packages+=("${bench[@]}") ;;
    check) packages+=("${check[@]}") ;;
    debs) packages+=("${debs[@]}") ;;
    coverage) packages+=("${coverage[@]}") ;;
    windows) packages+=("${windows[@]}") ;;
    all) packages+=("${build[@]}" "${demo[@]}" "${test[@]}" "${bench[@]}" "${check[@]}" "${debs[@]}") ;;
    *) die "unknown group '$group'; the groups are build, demo, test, bench, check, debs, coverage, windows and all" ;;
    esac
done
mapfile -t packages < <(printf '%s\n' "${packages[@]}" | sort -u)

# "ii " is a package that is wanted and whole; anything else, unknown packages included, is missing.
installed=$(dpkg-query --show --showformat='${db:Status-Abbrev}${Package}\n' "${packages[@]}" 2>/dev/null |
    sed -n 's/^ii //p') || true
mapfile -t missing < <(comm -23 <(printf '%s\n' "${packages[@]}") <(sort -u <<<"$installed"))
if [ ${#missing[@]} -eq 0 ]; then
    say "All ${#packages[@]} packages needed are installed."
    exit 0
fi
say "Installing with apt-get: ${missing[*]}"

as_root=()
if [ "$(id -u)" -ne 0 ]; then
    command -v sudo >/dev/null || die "packages are missing and neither root's rights nor sudo are at hand: ${missing[*]}"
    as_root=(sudo)
fi

# A package's maintainer script starts its service by one of two commands. For the time of the installation ones that
# refuse to start anything come first in dpkg's search path; nothing of the system is changed for that.
shims=$(mktemp -d)
trap 'rm -rf "$shims"' EXIT
chmod 755 "$shims"
for command in invoke-rc.d deb-systemd-invoke; do
    real=$(PATH=/usr/sbin:/usr/bin:/sbin:/bin command -v "$command") || real=/bin/true
    cat >"$shims/$command" <<SHIM
#!/bin/sh
for argument; do
    if [ "\$argument" = start ]; then exit 0; fi
done
exec $real "\$@"
SHIM
    chmod 755 "$shims/$command"
done

apt_get() {
    "${as_root[@]}" env DEBIAN_FRONTEND=noninteractive apt-get \
        -o DPkg::Path="$shims:/usr/sbin:/usr/bin:/sbin:/bin" -o DPkg::Lock::Timeout=300 -q "$@" </dev/null
}
apt_get update
apt_get install --yes --no-install-recommends "${missing[@]}"
say "Installed: ${missing[*]}"
