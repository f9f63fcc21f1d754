#!/usr/bin/env bash
# Shows the vantra command at work on a fresh Debian 12 machine: installs what is missing, builds the command, starts
# servers on loopback, fetches from a web server, takes files to an FTP server and an object store and back, and sends a
# mail. Fails if anything turns out other than it should. Leaves nothing behind but the packages and the build folder.
# shellcheck source=scripts/lib.sh
. "$(dirname "$0")/lib.sh"
# shellcheck source=scripts/demo-servers.sh
. scripts/demo-servers.sh

[ $# -eq 0 ] || die "takes no arguments"
export PATH=$PATH:/usr/sbin:/sbin # nginx and proftpd, for an ordinary user
build=build/demo
vantra=$build/bin/vantra

clean_up() {
    stop_servers
    if [ -n "$work" ]; then rm -rf "$work"; fi
}
trap clean_up EXIT
trap 'exit 130' INT
trap 'exit 143' TERM HUP

# run_quietly WHAT COMMAND...: shows the command's output only if it fails.
run_quietly() {
    local what=$1
    shift
    "$@" >"$work/log" 2>&1 </dev/null && return
    cat "$work/log" >&2
    die "$what failed"
}

build_command() {
    scripts/install-deps.sh build demo
    say "Building the vantra command in $build; the first time takes some minutes."
    run_quietly "the build" cmake --preset release -B "$build" -DBUILD_TESTING=OFF -DVANTRA_BUILD_BENCHMARKS=OFF
    run_quietly "the build" cmake --build "$build" --target vantra_command
    say "Built $vantra: $("$vantra" --version | head -n 1)."
}

# A certificate authority, and a certificate from it for the server on loopback.
make_certificates() {
    local ec=(-newkey ec -pkeyopt ec_paramgen_curve:prime256v1 -noenc)
    printf 'subjectAltName = DNS:localhost, IP:127.0.0.1\n' >"$work/names.conf"
    run_quietly "making the certificate authority" openssl req -x509 "${ec[@]}" -days 2 \
        -subj '/CN=vantra demo authority' -keyout "$work/ca.key" -out "$work/ca.crt"
    run_quietly "making the server's request" openssl req "${ec[@]}" -subj /CN=localhost \
        -keyout "$work/server.key" -out "$work/server.csr"
    run_quietly "making the server's certificate" openssl x509 -req -in "$work/server.csr" \
        -CA "$work/ca.crt" -CAkey "$work/ca.key" -CAcreateserial -days 2 \
        -extfile "$work/names.conf" -out "$work/server.crt"
}

# fetch ARGUMENT...: runs "vantra get" into the files body, messages and status of the work folder, and shows it.
fetch() {
    local shown=${*//$work/TEMP}
    say ""
    say "  \$ vantra get $shown"
    local status=0
    without_proxies "$vantra" get "$@" >"$work/body" 2>"$work/messages" </dev/null || status=$?
    sed 's/^/  /' "$work/body" "$work/messages"
    say "  (exit status $status)"
    printf '%s\n' "$status" >"$work/status"
}

# expect_page WHAT: the last fetch gave the page, byte by byte, and no message.
expect_page() {
    [ "$(cat "$work/status")" = 0 ] || die "fetching the page over $1 failed"
    cmp "$work/body" "$work/pages/hello.html" || die "the page over $1 is not the one that the server has"
    [ ! -s "$work/messages" ] || die "fetching the page over $1 gave an unexpected message"
    say "Saw the page over $1, the same $(wc -c <"$work/body") bytes that the server has."
}

# expect_failure WHAT TEXT: the last fetch failed, gave no body, and its message has the text.
expect_failure() {
    [ "$(cat "$work/status")" = 1 ] || die "$1 should have ended with exit status 1"
    [ ! -s "$work/body" ] || die "$1 should not have given a body"
    grep -qF -- "$2" "$work/messages" || die "the message about $1 should contain: $2"
}

# use_ftp VERB ARGUMENT...: runs "vantra ftp" with explicit TLS into the files body, messages and status, and shows it.
use_ftp() {
    local arguments=("$@" --tls explicit --cacert "$work/ca.crt" --user user --password-file "$work/password")
    local status=0
    say ""
    say "  \$ vantra ftp ${arguments[*]//$work/TEMP}"
    without_proxies "$vantra" ftp "${arguments[@]}" >"$work/body" 2>"$work/messages" </dev/null || status=$?
    sed 's/^/  /' "$work/body" "$work/messages"
    say "  (exit status $status)"
    printf '%s\n' "$status" >"$work/status"
}

# Takes a file to the FTP server and back.
show_file_round_trip() {
    local folder=ftp://127.0.0.1:$ftp_port/reports
    use_ftp put "$folder/2019/april.html" "$work/pages/hello.html" --create-dirs
    [ "$(cat "$work/status")" = 0 ] || die "storing the file failed"
    cmp "$work/pages/hello.html" "$work/files/reports/2019/april.html" || die "the file on the server is another one"
    use_ftp ls "$folder/2019"
    grep -q ' april\.html$' "$work/body" || die "the file is missing from the listing"
    use_ftp get "$folder/2019/april.html"
    expect_page "FTP with TLS"
    use_ftp rmtree "$folder" --yes
    [ ! -e "$work/files/reports" ] || die "the folder is still there"
    use_ftp stat "$folder"
    expect_failure "a folder that was removed" 550
    say "Saw a file go to the FTP server and come back over TLS, and its folders made and removed."
}

# send_mail ARGUMENT...: runs "vantra mail send" with STARTTLS and a login, and shows it.
send_mail() {
    local arguments=(--server "127.0.0.1:$starttls_port" --tls starttls --user user
        --password-file "$work/password" "$@")
    say ""
    say "  \$ vantra mail send ${arguments[*]//$work/TEMP}"
    without_proxies "$vantra" mail send "${arguments[@]}" 2>"$work/messages" </dev/null || {
        cat "$work/messages" >&2
        die "sending the mail failed"
    }
}

# Shows what the mail server received, the mail's start at least, and checks it.
show_mail() {
    say "The mail server received, with this envelope:"
    sed 's/^/  /' "$work/mails/1.json"
    say ""
    say "and this mail:"
    tr -d '\r' <"$work/mails/1.eml" | sed 's/^/  /'
    grep -qF '"tls":"TLSv1' "$work/mails/1.json" || die "the mail should have come over TLS"
    grep -qF '"login":"user"' "$work/mails/1.json" || die "the mail should have come with a login"
    grep -qF "$(base64 --wrap 76 "$work/pages/hello.html")" <(tr -d '\r' <"$work/mails/1.eml") ||
        die "the attachment should have come with the mail"
    say "Saw that the mail came over TLS with a login, and the attachment with it."
}

# use_store SECRET-FILE ARGUMENT...: runs "vantra s3" into the files body, messages and status, and shows it.
use_store() {
    local secret=$1
    shift
    local arguments=("$@" --endpoint "http://127.0.0.1:$store_port" --access-key test:tester --secret-key-file "$secret")
    local status=0
    say ""
    say "  \$ vantra s3 ${arguments[*]//$work/TEMP}"
    without_proxies "$vantra" s3 "${arguments[@]}" >"$work/body" 2>"$work/messages" </dev/null || status=$?
    sed 's/^/  /' "$work/body" "$work/messages"
    say "  (exit status $status)"
    printf '%s\n' "$status" >"$work/status"
}

# Takes an object to the store and back.
show_object_round_trip() {
    local url='s3://demo/pages/grüß dich.html'
    printf 'testing\n' >"$work/secret"
    printf 'guessed\n' >"$work/wrong-secret"
    use_store "$work/secret" put "$url" -f "$work/pages/hello.html" --content-type text/html
    [ "$(cat "$work/status")" = 0 ] || die "uploading the object failed"
    use_store "$work/secret" ls s3://demo --delimiter /
    grep -q ' pages/$' "$work/body" || die "the object's folder is missing from the listing"
    use_store "$work/secret" ls s3://demo/pages/
    grep -qF "pages/grüß dich.html" "$work/body" || die "the object is missing from the listing"
    use_store "$work/secret" get "$url"
    expect_page "S3"
    use_store "$work/secret" rm "$url"
    use_store "$work/secret" exists "$url"
    expect_failure "an object that was removed" "there is no such object"
    use_store "$work/wrong-secret" ls s3://demo
    expect_failure "a wrong secret key" SignatureDoesNotMatch
    say "Saw an object go to the store and come back, and what the store says of a wrong secret key."
}

work=$(mktemp -d)
mkdir "$work/mails" "$work/pages" "$work/temp"
printf '<html><body>Hello from the demo server: grüß dich.</body></html>\n' >"$work/pages/hello.html"
printf '<html><body><p>This server has\nno such page.</p></body></html>\n' >"$work/pages/missing.html"

build_command
make_certificates
say "Made a certificate authority and a certificate for 127.0.0.1 with openssl."
start_server "web server" prepare_web_server
say "Started nginx as process $server_pid with HTTP on port $http_port and HTTPS on port $https_port of 127.0.0.1."

fetch "http://127.0.0.1:$http_port/hello.html"
expect_page HTTP

fetch --cacert "$work/ca.crt" "https://127.0.0.1:$https_port/hello.html"
expect_page "HTTPS"
say "The server's certificate was checked against the authority for that."

fetch "https://127.0.0.1:$https_port/hello.html"
expect_failure "a server whose authority nobody trusts" certificate
say "Saw that the same server is refused when its authority is not known."

fetch "http://127.0.0.1:$http_port/nothing-here.html"
expect_failure "a page that does not exist" 404
expect_failure "a page that does not exist" "This server has no such page."
say "Saw that a missing page is an error, with the status 404 and the server's own message."

printf 'secret\n' >"$work/password"
start_server "FTP server" prepare_ftp_server
say "Started proftpd as process $server_pid on port $ftp_port of 127.0.0.1."
show_file_round_trip

start_server "mail server" prepare_mail_server
say "Started aiosmtpd as process $server_pid with STARTTLS on port $starttls_port of 127.0.0.1."
printf 'Grüße aus der Demo.\n.\nDie Zeile mit dem Punkt gehört dazu.\n' >"$work/letter.txt"
send_mail --from jane@example.org --to joe@example.org --to jim@example.org --subject 'Grüße mit Anhang' \
    --text "$work/letter.txt" --attach "$work/pages/hello.html"
show_mail

start_server "object store" prepare_object_store
say "Started an object store as process $server_pid on port $store_port of 127.0.0.1."
show_object_round_trip

say ""
clean_up
say "Everything was as expected."
