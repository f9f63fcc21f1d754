#!/usr/bin/env bash
# What a transfer costs with the library, beside the same transfer with bare libcurl, against a web server on loopback.
# Builds the release preset first. Close other programs for figures that mean something.
# shellcheck source=scripts/lib.sh
. "$(dirname "$0")/lib.sh"

[ $# -eq 0 ] || die "takes no arguments"
scripts/install-deps.sh build bench test
cmake --preset release >/dev/null
cmake --build --preset release --target vantra_bench
exec build/release/bin/vantra_bench
