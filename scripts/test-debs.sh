#!/usr/bin/env bash
# Installs the Debian packages into a minimal Debian of their own and uses them there: the command, then README's first
# program, built with nothing but libvantra-dev, a compiler and a build tool, both against a local web server. Then
# purges them and looks for what is left. lintian looks at the packages before.
#
#     scripts/test-debs.sh [FOLDER]      FOLDER, default build/debs/debs, holds what scripts/make-debs.sh made
#
# Runs as root on Debian, with scripts/install-deps.sh debs. The minimal system is of this machine's version and from
# the mirrors that its apt uses; nothing outside of the minimal system is changed. It and the packages fetched for it
# are kept for the next time, in VANTRA_DEBS_CACHE, default ~/.cache/vantra-debs.
# shellcheck source=scripts/lib.sh
. "$(dirname "$0")/lib.sh"

folder=${1:-build/debs/debs}
packages=(libvantra0 libvantra-dev vantra-tools)
# What README's program is built with.
build_tools=(g++ pkg-config cmake make)

[ "$(id -u)" -eq 0 ] || die "needs root's rights, for chroot and to install packages in there"
for command in debootstrap chroot lintian dpkg-deb apt-get flock; do
    command -v "$command" >/dev/null || die "$command is missing: scripts/install-deps.sh debs"
done
declare -A debs
for package in "${packages[@]}"; do
    mapfile -t found < <(find "$folder" -maxdepth 1 -name "${package}_*.deb" 2>/dev/null)
    [ ${#found[@]} -eq 1 ] || die "$folder holds ${#found[@]} packages $package, not one: scripts/make-debs.sh"
    debs[$package]=${found[0]}
done
version=$(dpkg-deb --field "${debs[libvantra0]}" Version)

# Debian asks that a new package closes a wish for it, which these, not being Debian's, do not.
lintian --allow-root --fail-on error,warning --suppress-tags initial-upload-closes-no-bugs "${debs[@]}" || die "lintian objects"
say "lintian finds nothing wrong with ${packages[*]} $version."

# What runs on this machine, and where from.
codename=$(sed -nE 's/^VERSION_CODENAME=//p' /etc/os-release)
architecture=$(dpkg --print-architecture)
mapfile -t sources < <(debian_sources "$codename")
mirror=$(debian_mirror "$codename")
[ -n "$mirror" ] || die "apt knows no source of $codename main"
http_proxy=${http_proxy-$(apt-config shell proxy Acquire::http::Proxy | sed -nE "s/^proxy='(.*)'\$/\\1/p")}

cache=${VANTRA_DEBS_CACHE:-${XDG_CACHE_HOME:-$HOME/.cache}/vantra-debs}/$codename-$architecture
mkdir -p "$cache/archives"
exec {lock}>"$cache/lock"
flock "$lock"
rm -rf --one-file-system "$cache"/run.* "$cache"/new.*
work=$(mktemp -d "$cache/run.XXXXXX")
clean_up() {
    stop_pages
    rm -rf --one-file-system "$work"
}
trap clean_up EXIT
root=$work/root

if [ ! -d "$cache/minimal" ]; then
    say "Making a minimal $codename from $mirror ..."
    new=$(mktemp -d "$cache/new.XXXXXX")
    http_proxy=$http_proxy debootstrap --variant=minbase --include=ca-certificates "$codename" "$new" "$mirror" \
        >"$cache/debootstrap.log" 2>&1 </dev/null || die "debootstrap failed: $(tail -n 5 "$cache/debootstrap.log")"
    rm -f "$new"/var/cache/apt/archives/*.deb
    chmod 755 "$new"
    mv "$new" "$cache/minimal"
fi
cp -a --reflink=auto "$cache/minimal" "$root"
printf 'deb %s\n' "${sources[@]}" >"$root/etc/apt/sources.list"
printf 'exit 101\n' >"$root/usr/sbin/policy-rc.d" # starts no services
chmod 755 "$root/usr/sbin/policy-rc.d"
cp /etc/resolv.conf "$root/etc/resolv.conf"
find "$cache/archives" -name '*.deb' -exec cp -l -t "$root/var/cache/apt/archives" {} +
mkdir "$root/debs"
cp "${debs[@]}" "$root/debs"

# inside COMMAND...: in the minimal system, with the network of this one.
inside() {
    env -i PATH=/usr/sbin:/usr/bin:/sbin:/bin HOME=/root LC_ALL=C.UTF-8 DEBIAN_FRONTEND=noninteractive \
        chroot "$root" "$@" </dev/null
}

# apt_get ARGUMENT...: what it says is shown only if it fails.
apt_get() {
    inside env ${http_proxy:+http_proxy="$http_proxy"} apt-get --yes --quiet --no-install-recommends \
        -o Dpkg::Options::=--force-unsafe-io "$@" >"$work/apt.log" 2>&1 ||
        die "apt-get $* failed: $(tail -n 20 "$work/apt.log")"
}

# deb PACKAGE: its file, for apt-get inside.
deb() {
    printf '/debs/%s\n' "$(basename "${debs[$1]}")"
}

mkdir "$work/pages"
head -c 100000 /dev/urandom | base64 >"$work/pages/page.txt"
serve_pages "$work/pages"

apt_get update
apt_get install "$(deb vantra-tools)" "$(deb libvantra0)"
say "The command and the libraries are installed."
inside ldconfig --print-cache | grep 'libvantra\.so\.0' >/dev/null || die "the dynamic linker was not told of the libraries"
told=$(inside vantra --version)
[[ $told = *"${version%-*}"* ]] || die "vantra --version says '$told', not ${version%-*}"
inside vantra get "$pages_url/page.txt" >"$work/fetched" || die "vantra get failed"
cmp "$work/pages/page.txt" "$work/fetched" || die "vantra get fetched something else"
say "The command fetched the page. It says: $told"

apt_get install "$(deb libvantra-dev)" "${build_tools[@]}"
say "The development files are installed."
# With README's own lines.
mkdir "$root/first"
# block LANGUAGE: README's first block in the language.
block() {
    local blocks
    mapfile -d '' -t blocks < <(scripts/check-documents.py --blocks "$1" README.md)
    [ ${#blocks[@]} -gt 0 ] || die "README shows no $1"
    printf '%s\n' "${blocks[0]}"
}
block cpp >"$root/first/first.cpp"
{
    printf '%s\n' 'cmake_minimum_required(VERSION 3.25)' 'project(first LANGUAGES CXX)'
    block cmake
} >"$root/first/CMakeLists.txt"
# shellcheck disable=SC2016  # the inner shell expands it
compile='g++ -std=c++20 first.cpp $(pkg-config --cflags --libs vantra)'
grep -qF "\`$compile\`" README.md || die "README does not say: $compile"

# runs HOW PROGRAM
runs() {
    local told
    told=$(inside "$2" "$pages_url/page.txt") || die "README's program, built $1, failed: $told"
    [ "$told" = "$(stat -c %s "$work/pages/page.txt") bytes" ] || die "README's program, built $1, says: $told"
    say "README's program, built $1, fetched the page."
}
inside sh -c "cd /first && $compile" || die "README's program does not compile with pkg-config"
runs "with pkg-config" /first/a.out
inside sh -c 'cmake -S /first -B /first/build && cmake --build /first/build' >"$work/cmake.log" 2>&1 ||
    die "README's program does not build with CMake: $(cat "$work/cmake.log")"
runs "with CMake" /first/build/first

mapfile -t files < <(inside dpkg-query --listfiles "${packages[@]}" | sed '/^$/d' | sort -u)
[ ${#files[@]} -gt 50 ] || die "the packages have only ${#files[@]} files and folders"
apt_get purge "${packages[@]}"
left=()
for file in "${files[@]}"; do
    # A folder stays while it is another package's too.
    if [ -d "$root$file" ] && inside dpkg-query --search "$file" >/dev/null 2>&1; then continue; fi
    if [ -e "$root$file" ] || [ -L "$root$file" ]; then left+=("$file"); fi
done
mapfile -t -O ${#left[@]} left < <(cd "$root" && find . -xdev \( -path ./debs -o -path ./first -o -path ./proc -o -path ./sys \) -prune -o \
    \( -name '*vantra*' -o -name 'libkel*' \) -print)
[ ${#left[@]} -eq 0 ] || die "purging the packages leaves: ${left[*]}"
if inside ldconfig --print-cache | grep -E 'libvantra|libkel'; then die "the dynamic linker still looks for the libraries"; fi
# shellcheck disable=SC2016  # dpkg-query expands these
known=$(inside dpkg-query --show --showformat='${Package} ${db:Status-Abbrev}\n' "${packages[@]}" 2>/dev/null) || true
[ -z "$known" ] || die "dpkg still knows: $known"
say "Purging the packages leaves none of their ${#files[@]} files and folders."

# What apt fetched, and would fetch again, is kept.
inside apt-get autoclean >/dev/null
rm -rf "$cache/archives"
mkdir "$cache/archives"
find "$root/var/cache/apt/archives" -name '*.deb' -exec mv -t "$cache/archives" {} +
