#include "support/NginxConfiguration.h"

#include "support/AccessLog.h"
#include "support/ServerUser.h"

#include <map>
#include <stdexcept>

namespace testsupport {

namespace {

constexpr const char* mainTemplate = R"(
load_module /usr/lib/nginx/modules/ngx_http_echo_module.so;
worker_processes 1;
daemon off;
pid @DIR@/nginx.pid;
error_log @DIR@/error.log info;
@USER@
events { worker_connections 1024; }
http {
    log_format requests @LOGFORMAT@;
    access_log @DIR@/access.log requests;
    client_body_temp_path @DIR@/body;
    proxy_temp_path @DIR@/proxy;
    fastcgi_temp_path @DIR@/fastcgi;
    uwsgi_temp_path @DIR@/uwsgi;
    scgi_temp_path @DIR@/scgi;
    types { text/plain txt; text/html html; application/octet-stream bin; }
    default_type application/octet-stream;
    client_max_body_size 64m;
    keepalive_requests 100000;
    server_tokens off;
    ssl_certificate @SERVERCERT@;
    ssl_certificate_key @SERVERKEY@;

    # HTTP/2 has no Connection header; this one keeps the number of headers of /bench the same.
    map $server_protocol $in_place_of_connection { "HTTP/2.0" "none"; default ""; }

    server {
        listen 127.0.0.1:@HTTP@;
        listen 127.0.0.1:@HTTPS@ ssl http2;
        listen 127.0.0.1:@HTTPS1@ ssl;
        server_name localhost;
        root @DIR@/www;
        gzip on;
        gzip_min_length 10;
        gzip_types text/plain application/json;

        location / { autoindex on; }
        location = @MARKER@ { return 204; }
@REDIRECTS@
        location = /rabs { return 302 http://127.0.0.1:@HTTP@/hello.txt; }
        location = /rrel { absolute_redirect off; return 302 /hello.txt; }
        location = /rcross { return 302 http://localhost:@HTTP@/echo; }
        location = /rhttps { return 302 https://localhost:@HTTPS@/hello.txt; }
        location = /loop { return 302 /loop; }

        location = /s204 { return 204; }
        location = /s400 { default_type text/plain; return 400 "bad\n"; }
        location = /s403 { default_type text/plain; return 403 "forbidden\n"; }
        location = /s404 { default_type text/plain; return 404 "missing body\n"; }
        location = /s404html { default_type text/html; return 404 "<html><body><h1>Missing</h1></body></html>\n"; }
        location = /s410 { return 410; }
        location = /s429 { add_header Retry-After 1 always; return 429; }
        location = /s500 { default_type text/plain; return 500 "boom\n"; }
        location = /s502 { default_type text/plain; return 502 "gateway\n"; }
        location = /s503 { default_type text/plain; add_header Retry-After 1 always; return 503 "busy\n"; }

        location /basic/ { alias @DIR@/www/; auth_basic "test realm"; auth_basic_user_file @DIR@/htpasswd; }
        location /put/ {
            dav_methods PUT DELETE MKCOL COPY MOVE;
            create_full_put_path on;
            dav_access user:rw group:r all:r;
        }
        location /putauth/ {
            auth_basic "test realm";
            auth_basic_user_file @DIR@/htpasswd;
            dav_methods PUT DELETE;
            create_full_put_path on;
        }

        location = /echo {
            default_type text/plain;
            gzip off;
            echo_read_request_body;
            echo -n $echo_client_request_headers;
            echo_request_body;
        }
        location ~ ^/delay/(?<seconds>[0-9.]+)$ {
            default_type text/plain;
            gzip off;
            access_log off;
            echo_sleep $seconds;
            echo late;
        }
        location = /slow { access_log off; limit_rate 2k; alias @DIR@/www/big.bin; }
        location /noranges/ { alias @DIR@/www/; max_ranges 0; }

        location = /bench {
            access_log off;
            gzip off;
            default_type text/plain;
            add_header Cache-Control "private, max-age=60";
            add_header ETag '"0123456789abcdef"';
            add_header Vary "Accept-Encoding";
            add_header X-Request-Id "5f0c6f3a9d8e4b71a2c3";
            add_header X-Content-Type-Options "nosniff";
            add_header X-Frame-Options "DENY";
            add_header Strict-Transport-Security "max-age=31536000";
            add_header X-In-Place-Of-Connection $in_place_of_connection;
            return 200 "@BENCHBODY@";
        }
@MORELOCATIONS@
    }

    server {
        listen 127.0.0.1:@WRONGHOST@ ssl;
        ssl_certificate @WRONGHOSTCERT@;
        ssl_certificate_key @WRONGHOSTKEY@;
        root @DIR@/www;
    }
    server {
        listen 127.0.0.1:@EXPIRED@ ssl;
        ssl_certificate @EXPIREDCERT@;
        ssl_certificate_key @EXPIREDKEY@;
        root @DIR@/www;
    }
    server {
        listen 127.0.0.1:@SELFSIGNED@ ssl;
        ssl_certificate @SELFSIGNEDCERT@;
        ssl_certificate_key @SELFSIGNEDKEY@;
        root @DIR@/www;
    }
    server {
        listen 127.0.0.1:@CLIENTCERT@ ssl;
        ssl_client_certificate @AUTHORITY@;
        ssl_verify_client on;
        root @DIR@/www;
    }
@REVERSEPROXIES@
}
)";

/// Without a URI of its own, proxy_pass hands on the path unchanged, with %2F and the like.
constexpr const char* reverseProxyTemplate = R"(
    server {
        listen 127.0.0.1:@PORT@ @PROTOCOLS@;
        client_max_body_size 0;
        location / {
            proxy_pass http://127.0.0.1:@UPSTREAM@;
            proxy_http_version 1.1;
            proxy_set_header Host $http_host;
            proxy_buffering off;
            proxy_request_buffering @REQUESTBUFFERING@;
        }
    }
)";

using Placeholders = std::map<std::string, std::string>;

/// Puts in the value for each @NAME@.
std::string filled(const std::string& text, const Placeholders& values) {
    std::string result;
    std::size_t position = 0;
    while (true) {
        const std::size_t begin = text.find('@', position);
        result += text.substr(position, begin - position);
        if (begin == std::string::npos) return result;
        const std::size_t end = text.find('@', begin + 1);
        if (end == std::string::npos) throw std::logic_error("a placeholder without its end");
        result += values.at(text.substr(begin + 1, end - begin - 1));
        position = end + 1;
    }
}

/// "/r302" leads to /hello.txt, "/r302/any/path?query" to "/any/path?query", and so on for every kind of
/// redirect.
/// "/chain/N" takes N redirects to /hello.txt.
std::string redirects() {
    std::string text;
    for (const char* code : {"301", "302", "303", "307", "308"}) {
        text +=
            filled("        location = /r@CODE@ { return @CODE@ /hello.txt; }\n"
                   "        location ~ ^/r@CODE@(?<target>/.+)$ { return @CODE@ $target$is_args$args; }\n",
                   {{"CODE", code}});
    }
    constexpr int longestChain = 60;
    text += "        location = /chain/1 { return 302 /hello.txt; }\n";
    for (int length = 2; length <= longestChain; ++length) {
        text += "        location = /chain/" + std::to_string(length) + " { return 302 /chain/" +
                std::to_string(length - 1) + "; }\n";
    }
    return text;
}

std::string reverseProxies(const NginxConfiguration& configuration) {
    std::string text;
    for (std::size_t index = 0; index < configuration.reverseProxies.size(); ++index) {
        const ReverseProxy& proxy = configuration.reverseProxies[index];
        text += filled(reverseProxyTemplate,
                       {{"PORT", std::to_string(configuration.ports.reverseProxies.at(index))},
                        {"PROTOCOLS", proxy.isHttp2 ? "ssl http2" : "ssl"},
                        {"UPSTREAM", std::to_string(proxy.upstreamPort)},
                        {"REQUESTBUFFERING", proxy.buffersRequests ? "on" : "off"}});
    }
    return text;
}

} // namespace

std::string nginxBenchBody() {
    constexpr std::size_t size = 256;
    constexpr const char* pattern = "0123456789abcdef";
    std::string body;
    while (body.size() < size) body += pattern;
    return body;
}

std::string makeNginxConfiguration(const NginxConfiguration& configuration) {
    const NginxPorts& ports = configuration.ports;
    const NginxCertificates& certificates = configuration.certificates;
    // The worker of a server that root starts would run as another user, who cannot enter the temporary
    // folder.
    return filled(mainTemplate, {
                                    {"DIR", configuration.folder},
                                    {"USER", serverUser().isRoot() ? "user root;" : ""},
                                    {"LOGFORMAT", accessLogFormat()},
                                    {"MARKER", nginxLogMarkerPath},
                                    {"REDIRECTS", redirects()},
                                    {"BENCHBODY", nginxBenchBody()},
                                    {"MORELOCATIONS", configuration.moreLocations},
                                    {"HTTP", std::to_string(ports.http)},
                                    {"HTTPS", std::to_string(ports.https)},
                                    {"HTTPS1", std::to_string(ports.https1)},
                                    {"WRONGHOST", std::to_string(ports.wrongHost)},
                                    {"EXPIRED", std::to_string(ports.expired)},
                                    {"SELFSIGNED", std::to_string(ports.selfSigned)},
                                    {"CLIENTCERT", std::to_string(ports.clientCertificate)},
                                    {"AUTHORITY", configuration.authorityFile},
                                    {"SERVERCERT", certificates.server.certFile},
                                    {"SERVERKEY", certificates.server.keyFile},
                                    {"WRONGHOSTCERT", certificates.wrongHost.certFile},
                                    {"WRONGHOSTKEY", certificates.wrongHost.keyFile},
                                    {"EXPIREDCERT", certificates.expired.certFile},
                                    {"EXPIREDKEY", certificates.expired.keyFile},
                                    {"SELFSIGNEDCERT", certificates.selfSigned.certFile},
                                    {"SELFSIGNEDKEY", certificates.selfSigned.keyFile},
                                    {"REVERSEPROXIES", reverseProxies(configuration)},
                                });
}

} // namespace testsupport
