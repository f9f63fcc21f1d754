/// @file support/NginxServer.h
/// A real web server: nginx (Debian packages nginx and libnginx-mod-http-echo).
///
///     NginxServer server;
///     EXPECT_EQ(get(server.url("/hello.txt")), NginxServer::helloContent());
///     EXPECT_EQ(server.accessLog().back().userAgent, "...");
#pragma once

#include "support/AccessLog.h"
#include "support/CertificateAuthority.h"
#include "support/ChildProcess.h"
#include "support/NginxConfiguration.h"
#include "support/TempDir.h"

#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace testsupport {

/// How NginxServer is set up.
struct NginxOptions {
    std::shared_ptr<CertificateAuthority>
        authority;                            ///< whose certificates it shows; null (the default): a new one
    std::vector<ReverseProxy> reverseProxies; ///< further HTTPS ports; none by default
    std::string moreLocations;                ///< nginx directives for the main server block
};

/// An nginx of the test's own with one worker, on free ports of 127.0.0.1.
///
/// On the ports http, https and https1 it offers:
/// - /hello.txt /page.html /empty.txt /big.bin: files, with ranges, ETag and, if the client wants it, gzip
///   for texts
/// - /r301 /r302 /r303 /r307 /r308: a redirect to /hello.txt; with more path behind it, to that path
/// - /rabs /rrel /rcross /rhttps: 302 to /hello.txt, given absolute or relative; to /echo on the host
///   localhost; to https
/// - /chain/N /loop: N redirects (1 to 60) to /hello.txt; redirects without end
/// - /s204 /s400 /s403 /s404 /s404html /s410 /s429 /s500 /s502 /s503: that status; a line of text but for
///   204, 410 and 429
/// - /basic/FILE: the files, for userName() and password() only, realm "test realm"
/// - /put/NAME: PUT, DELETE, MKCOL, COPY, MOVE; 201 for a new file, 204 for an old one
/// - /putauth/NAME: PUT and DELETE, for userName() and password() only
/// - /echo: the request's head and body as text/plain; the head is missing over HTTP/2
/// - /delay/SECONDS: "late\n" after that time, which may be a fraction; not logged
/// - /slow: /big.bin with 2 KiB a second; not logged
/// - /noranges/FILE: the files, always whole
/// - /bench: 256 bytes with exactly 12 response headers; not logged
///
/// The other HTTPS ports offer the files only.
///
/// Thread safety: one thread at a time, except for the members that are const.
class NginxServer {
public:
    /// Starts the server and waits until it accepts connections.
    /// @throws std::runtime_error with its output if it does not start.
    explicit NginxServer(NginxOptions options = {});

    const NginxPorts& ports() const { return ports_; }

    /// "http://127.0.0.1:<port>" and the path.
    std::string url(std::string_view path = "/") const;

    /// "https://localhost:<port>" and the path, for a client that trusts caFile(); HTTP/2 and HTTP/1.1.
    std::string httpsUrl(std::string_view path = "/") const;

    /// "https://localhost:<port>" and the path, for any of ports().
    static std::string httpsUrl(std::uint16_t port, std::string_view path = "/");

    CertificateAuthority& authority() { return *authority_; }

    /// The certificate of authority().
    const std::string& caFile() const { return authority_->caFile(); }

    /// The folder behind "/", without a slash at the end.
    std::string documentRoot() const;

    /// The content of a file that a client has put, by its path from /put/ on, as in "put/new.bin".
    /// @throws std::runtime_error if there is none.
    std::string fileContent(std::string_view path) const;

    /// All requests finished so far, in that order. Asks the server itself, so that the last one is not
    /// missed.
    std::vector<AccessLogEntry> accessLog() const;

    /// Forgets the requests so far.
    void clearAccessLog();

    /// The server's error log, at level info.
    std::string errorLog() const;

    ChildProcess& process() { return *process_; }

    static std::string userName() { return "user"; }
    static std::string password() { return "secret"; }
    static std::string helloContent() { return "hello from the web server\n"; }
    static std::string pageContent();

    /// The 1 MiB of /big.bin: bytes without a pattern, the same in every run.
    static const std::string& bigContent();

private:
    void writeDocuments() const;
    NginxCertificates makeCertificates();
    std::unique_ptr<ChildProcess> launch(const std::vector<std::uint16_t>& ports,
                                         NginxConfiguration configuration);
    void requestLogMarker(const std::string& target) const;

    TempDir folder_;
    std::shared_ptr<CertificateAuthority> authority_;
    NginxPorts ports_;
    std::unique_ptr<ChildProcess> process_;
};

} // namespace testsupport
