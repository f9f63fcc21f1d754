# shellcheck shell=bash
# What the scripts share; each sources it first. Leaves the shell in the top folder of the tree.

set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."

# Two compilers at a time fit into the memory of a small machine.
export CMAKE_BUILD_PARALLEL_LEVEL=${CMAKE_BUILD_PARALLEL_LEVEL:-2}

say() {
    printf '%s\n' "$*"
}

die() {
    printf '%s: %s\n' "${0##*/}" "$*" >&2
    exit 1
}

# The tree's files whose names match the given patterns: those under version control and those about to be. A file
# that was deleted but is still in the index is none of them.
tree_files() {
    local file
    git ls-files --cached --others --exclude-standard -- "$@" | while IFS= read -r file; do
        if [ -f "$file" ]; then printf '%s\n' "$file"; fi
    done
}

# on_every_line_in_parallel COMMAND ARGUMENT...: calls the command once for each line of standard input, with the line
# as its last argument. Fails if any of the calls does.
on_every_line_in_parallel() {
    xargs -r -d '\n' -n 1 -P "$CMAKE_BUILD_PARALLEL_LEVEL" "$@"
}

# debian_sources CODENAME: where this machine's apt takes main of that Debian and of its updates from, a line
# "ADDRESS SUITE main" each; nothing if apt knows no such source.
debian_sources() {
    # shellcheck disable=SC2016  # apt-get expands these
    apt-get indextargets --no-release-info --format '$(REPO_URI) $(RELEASE) $(COMPONENT)' 'Created-By: Packages' |
        awk -v suite="$1" '$3 == "main" && ($2 == suite || index($2, suite "-") == 1)' | sort -u
}

# debian_mirror CODENAME: the first of those addresses that has the release itself.
debian_mirror() {
    debian_sources "$1" | awk -v suite="$1" '$2 == suite && !found { print $1; found = 1 }'
}

# serve_pages FOLDER: starts a web server for the folder's files on a free port of the loopback interface, and leaves
# its process's id in `pages_pid` and its URL, without a slash at the end, in `pages_url`. stop_pages stops it.
serve_pages() {
    local log port=
    log=$(mktemp)
    /usr/bin/python3 -u -m http.server --bind 127.0.0.1 --directory "$1" 0 >"$log" 2>&1 &
    pages_pid=$!
    for _ in {1..100}; do
        port=$(sed -nE 's/^Serving HTTP on .* port ([0-9]+) .*/\1/p' "$log")
        [ -z "$port" ] || break
        sleep 0.1
    done
    [ -n "$port" ] || die "the web server did not start: $(cat "$log")"
    rm "$log"
    # shellcheck disable=SC2034  # for the caller
    pages_url=http://127.0.0.1:$port
}

# Does nothing if no server runs, so that it may be called in any trap.
stop_pages() {
    if [ -n "${pages_pid-}" ] && kill "$pages_pid" 2>/dev/null; then wait "$pages_pid" 2>/dev/null || true; fi
    pages_pid=
}

# without_proxies [NAME=VALUE...] COMMAND...: runs a command in an environment that names no proxy: servers of the
# loopback interface are not reached through one.
without_proxies() {
    env -u http_proxy -u https_proxy -u ftp_proxy -u all_proxy -u no_proxy \
        -u HTTPS_PROXY -u FTP_PROXY -u ALL_PROXY -u NO_PROXY "$@"
}
