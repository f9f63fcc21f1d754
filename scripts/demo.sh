#!/usr/bin/env bash
# Shows the vantra command at work on a fresh Debian 12 machine: installs what is missing, builds the command, starts a
# web server on loopback and fetches from it, sends a mail to a mail server there, and takes an object to an object
# store and back. Fails if anything turns out other than it should. Leaves nothing behind but the packages and the build
# folder.
# shellcheck source=scripts/lib.sh
. "$(dirname "$0")/lib.sh"

[ $# -eq 0 ] || die "takes no arguments"
export PATH=$PATH:/usr/sbin:/sbin # nginx, for an ordinary user
build=build/demo
vantra=$build/bin/vantra
server_pid=
mail_server_pid=
object_store_pid=
work=

# stop_server NAME PROCESS: PROCESS may be empty.
stop_server() {
    if [ -n "$2" ] && kill "$2" 2>/dev/null; then
        wait "$2" || true
        say "Stopped the $1 server (process $2)."
    fi
}

clean_up() {
    stop_server web "$server_pid"
    stop_server mail "$mail_server_pid"
    stop_server "object store" "$object_store_pid"
    server_pid=
    mail_server_pid=
    object_store_pid=
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

accepts_connections() {
    (exec 3<>"/dev/tcp/127.0.0.1/$1") 2>/dev/null
}

# A port below those that the system gives to outgoing connections.
free_port() {
    local port
    while :; do
        port=$((RANDOM % 10000 + 20000))
        accepts_connections "$port" || break
    done
    say "$port"
}

# write_server_configuration HTTP-PORT HTTPS-PORT
write_server_configuration() {
    local user=
    # Otherwise root's server would read the pages as another user, who cannot.
    [ "$(id -u)" -ne 0 ] || user='user root;'
    cat >"$work/nginx.conf" <<CONF
$user
daemon off;
worker_processes 1;
pid $work/nginx.pid;
error_log stderr warn;
events { worker_connections 64; }
http {
    access_log off;
    client_body_temp_path $work/temp;
    proxy_temp_path $work/temp;
    fastcgi_temp_path $work/temp;
    scgi_temp_path $work/temp;
    uwsgi_temp_path $work/temp;
    default_type text/plain;
    types { text/html html; }
    server {
        listen 127.0.0.1:$1;
        listen 127.0.0.1:$2 ssl;
        ssl_certificate $work/server.crt;
        ssl_certificate_key $work/server.key;
        root $work/pages;
        error_page 404 /missing.html;
    }
}
CONF
}

# Sets http_port and https_port. Another program may take a port between the choice and the start; then once more.
start_server() {
    local attempt waited
    for attempt in 1 2 3 4 5; do
        http_port=$(free_port)
        https_port=$(free_port)
        write_server_configuration "$http_port" "$https_port"
        nginx -p "$work" -e stderr -c "$work/nginx.conf" 2>"$work/nginx.log" &
        server_pid=$!
        for ((waited = 0; waited < 100; waited++)); do
            if ! kill -0 "$server_pid" 2>/dev/null; then break; fi
            if accepts_connections "$http_port" && accepts_connections "$https_port"; then return; fi
            sleep 0.1
        done
        kill "$server_pid" 2>/dev/null || true
        wait "$server_pid" 2>/dev/null || true
        server_pid=
        grep -q 'Address already in use' "$work/nginx.log" || break
    done
    cat "$work/nginx.log" >&2
    die "the web server did not start (attempt $attempt)"
}

# fetch ARGUMENT...: runs "vantra get" into the files body, messages and status of the work folder, and shows it.
fetch() {
    local shown=${*//$work/TEMP}
    say ""
    say "  \$ vantra get $shown"
    local status=0
    # No proxy of the environment: the server is on loopback.
    env -u http_proxy -u https_proxy -u all_proxy -u HTTPS_PROXY -u ALL_PROXY \
        "$vantra" get "$@" >"$work/body" 2>"$work/messages" </dev/null || status=$?
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

# Sets starttls_port; see start_server.
start_mail_server() {
    local attempt waited plain_port tls_port
    for attempt in 1 2 3 4 5; do
        plain_port=$(free_port)
        starttls_port=$(free_port)
        tls_port=$(free_port)
        /usr/bin/python3 -I tests/support/smtp_server.py "$work/mails" "$plain_port" "$starttls_port" "$tls_port" \
            "$work/server.crt" "$work/server.key" >"$work/mail.log" 2>&1 </dev/null &
        mail_server_pid=$!
        for ((waited = 0; waited < 100; waited++)); do
            if ! kill -0 "$mail_server_pid" 2>/dev/null; then break; fi
            if accepts_connections "$tls_port"; then return; fi # the last one that it opens
            sleep 0.1
        done
        kill "$mail_server_pid" 2>/dev/null || true
        wait "$mail_server_pid" 2>/dev/null || true
        mail_server_pid=
        grep -qi 'address already in use' "$work/mail.log" || break
    done
    cat "$work/mail.log" >&2
    die "the mail server did not start (attempt $attempt)"
}

# send_mail ARGUMENT...: runs "vantra mail send" with STARTTLS and a login, and shows it.
send_mail() {
    local arguments=(--server "127.0.0.1:$starttls_port" --tls starttls --user user
        --password-file "$work/password" "$@")
    say ""
    say "  \$ vantra mail send ${arguments[*]//$work/TEMP}"
    env -u all_proxy -u ALL_PROXY "$vantra" mail send "${arguments[@]}" 2>"$work/messages" </dev/null || {
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

# An object store with the bucket "demo".
start_object_store() {
    local attempt waited ports
    for attempt in 1 2 3 4 5; do
        store_port=$(free_port)
        ports=("$store_port" "$(free_port)" "$(free_port)" "$(free_port)")
        mkdir "$work/store$attempt"
        /usr/bin/python3 -I tests/support/s3_server.py "$work/store$attempt" "${ports[@]}" demo \
            >"$work/store.log" 2>&1 </dev/null &
        object_store_pid=$!
        for ((waited = 0; waited < 200; waited++)); do
            if ! kill -0 "$object_store_pid" 2>/dev/null; then break; fi
            if accepts_connections "$store_port"; then return; fi # the last one that it opens
            sleep 0.1
        done
        kill "$object_store_pid" 2>/dev/null || true
        wait "$object_store_pid" 2>/dev/null || true
        object_store_pid=
        grep -qi 'address already in use' "$work/store.log" || break
    done
    cat "$work/store.log" >&2
    die "the object store did not start (attempt $attempt)"
}

# use_store SECRET-FILE ARGUMENT...: runs "vantra s3" into the files body, messages and status, and shows it.
use_store() {
    local secret=$1
    shift
    local arguments=("$@" --endpoint "http://127.0.0.1:$store_port" --access-key test:tester --secret-key-file "$secret")
    local status=0
    say ""
    say "  \$ vantra s3 ${arguments[*]//$work/TEMP}"
    env -u http_proxy -u all_proxy -u ALL_PROXY \
        "$vantra" s3 "${arguments[@]}" >"$work/body" 2>"$work/messages" </dev/null || status=$?
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
start_server
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

start_mail_server
say "Started aiosmtpd as process $mail_server_pid with STARTTLS on port $starttls_port of 127.0.0.1."
printf 'secret\n' >"$work/password"
printf 'Grüße aus der Demo.\n.\nDie Zeile mit dem Punkt gehört dazu.\n' >"$work/letter.txt"
send_mail --from jane@example.org --to joe@example.org --to jim@example.org --subject 'Grüße mit Anhang' \
    --text "$work/letter.txt" --attach "$work/pages/hello.html"
show_mail

start_object_store
say "Started an object store as process $object_store_pid on port $store_port of 127.0.0.1."
show_object_round_trip

say ""
clean_up
say "Everything was as expected."
