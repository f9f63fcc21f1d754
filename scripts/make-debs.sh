#!/usr/bin/env bash
# Makes the Debian packages libvantra0, libvantra-dev and vantra-tools, for the Debian that this machine runs, of an
# optimised build without tests: build/debs/debs/*.deb. Needs scripts/install-deps.sh build debs.
# shellcheck source=scripts/lib.sh
. "$(dirname "$0")/lib.sh"

command -v dpkg-shlibdeps >/dev/null || die "dpkg-shlibdeps is missing: scripts/install-deps.sh build debs"

# The packages' files are as old as the change they were made from, and the same whenever they are made.
if [ -z "${SOURCE_DATE_EPOCH-}" ] && git rev-parse --quiet --verify HEAD >/dev/null; then
    SOURCE_DATE_EPOCH=$(git log -1 --format=%ct)
    export SOURCE_DATE_EPOCH
fi

cmake --preset debs
cmake --build --preset debs --target vantra vantra_command
rm -rf build/debs/debs
cpack --preset debs
say "Packages:"
find build/debs/debs -maxdepth 1 -name '*.deb' -printf '  %p (%k KiB)\n' | sort
