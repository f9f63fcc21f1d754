# shellcheck shell=bash
# The servers of the demo, on loopback, as processes of its own. Sourced by demo.sh.

work= # the folder for everything, which the demo makes
server_pids=()
server_names=()

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

# start_server NAME PREPARE: starts a server. PREPARE chooses its ports, writes what it needs to read, and sets command
# and last_port, which accepts connections when the server is up. Another program may take a port between the choice
# and the start; then once more. Sets server_pid.
start_server() {
    local name=$1 prepare=$2 command last_port attempt waited
    for attempt in 1 2 3 4 5; do
        "$prepare" "$attempt"
        "${command[@]}" >"$work/server.log" 2>&1 </dev/null &
        server_pid=$!
        for ((waited = 0; waited < 600; waited++)); do
            if ! kill -0 "$server_pid" 2>/dev/null; then break; fi
            if accepts_connections "$last_port"; then
                server_pids+=("$server_pid")
                server_names+=("$name")
                return
            fi
            sleep 0.1
        done
        kill "$server_pid" 2>/dev/null || true
        wait "$server_pid" 2>/dev/null || true
        grep -qi 'address already in use' "$work/server.log" || break
    done
    cat "$work/server.log" >&2
    die "the $name did not start (attempt $attempt)"
}

stop_servers() {
    local i
    for i in "${!server_pids[@]}"; do
        kill "${server_pids[i]}" 2>/dev/null || continue
        wait "${server_pids[i]}" 2>/dev/null || true
        say "Stopped the ${server_names[i]} (process ${server_pids[i]})."
    done
    server_pids=()
    server_names=()
}

# Sets http_port and https_port.
prepare_web_server() {
    http_port=$(free_port)
    https_port=$(free_port)
    write_web_configuration "$http_port" "$https_port"
    command=(nginx -p "$work" -e stderr -c "$work/nginx.conf")
    last_port=$https_port
}

# write_web_configuration HTTP-PORT HTTPS-PORT
write_web_configuration() {
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

# Sets ftp_port. The server demands TLS, asked for on the plain connection.
prepare_ftp_server() {
    ftp_port=$(free_port)
    write_ftp_configuration "$ftp_port"
    command=(proftpd -n -c "$work/proftpd.conf")
    last_port=$ftp_port
}

# write_ftp_configuration PORT
write_ftp_configuration() {
    local group rights
    group=$(id -g)
    rights="User $(id -un)"
    [ "$(id -u)" -ne 0 ] || rights=$'User nobody\nGroup nogroup'
    mkdir -p "$work/files"
    printf 'user:%s:%s:%s::%s:/bin/false\n' "$(openssl passwd -6 secret)" "$(id -u)" "$group" "$work/files" >"$work/passwd"
    printf 'users:x:%s:\n' "$group" >"$work/group"
    chmod 600 "$work/passwd"
    cat >"$work/proftpd.conf" <<CONF
LoadModule mod_tls.c
ServerType standalone
DefaultAddress 127.0.0.1
SocketBindTight on
UseIPv6 off
Port $1
$rights
PidFile $work/proftpd.pid
ScoreboardFile $work/scoreboard
TransferLog none
SystemLog none
WtmpLog off
AuthOrder mod_auth_file.c
AuthUserFile $work/passwd
AuthGroupFile $work/group
RequireValidShell off
RootLogin on
AllowOverwrite on
TLSEngine on
TLSRequired on
TLSECCertificateFile $work/server.crt
TLSECCertificateKeyFile $work/server.key
TLSOptions NoSessionReuseRequired
CONF
}

# Sets starttls_port.
prepare_mail_server() {
    starttls_port=$(free_port)
    last_port=$(free_port)
    command=(/usr/bin/python3 -I tests/support/smtp_server.py "$work/mails" "$(free_port)" "$starttls_port" "$last_port"
        "$work/server.crt" "$work/server.key")
}

# An object store with the bucket "demo". Sets store_port.
prepare_object_store() {
    store_port=$(free_port)
    mkdir "$work/store$1"
    command=(/usr/bin/python3 -I tests/support/s3_server.py "$work/store$1" "$store_port" "$(free_port)" "$(free_port)"
        "$(free_port)" demo)
    last_port=$store_port
}
