/// @file support/HttpbinServer.h
/// A real HTTP server with digest authentication and odd answers: httpbin (Debian packages python3-httpbin
/// and gunicorn).
#pragma once

#include "support/ChildProcess.h"
#include "support/TempDir.h"

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

namespace testsupport {

/// An httpbin of the test's own on a free port of 127.0.0.1, plain HTTP/1.1 with one worker of eight threads.
/// For TLS put a ReverseProxy of NginxServer before it.
///
/// Useful paths: /digest-auth/QOP/USER/PASSWORD[/ALGORITHM], /basic-auth/USER/PASSWORD, /anything,
/// /status/CODE, /cookies/set?NAME=VALUE, /gzip, /deflate, /brotli, /stream/N, /redirect/N, /delay/SECONDS.
///
/// Thread safety: const members from any thread.
class HttpbinServer {
public:
    /// Starts the server and waits until it has answered a request.
    /// @throws std::runtime_error with its output if it does not start.
    HttpbinServer();

    std::uint16_t port() const { return port_; }

    /// "http://127.0.0.1:<port>" and the path.
    std::string url(std::string_view path = "/") const;

    ChildProcess& process() { return *process_; }

private:
    std::unique_ptr<ChildProcess> launch(std::uint16_t port) const;
    void waitForAnswer() const;

    TempDir folder_;
    std::uint16_t port_ = 0;
    std::unique_ptr<ChildProcess> process_;
};

} // namespace testsupport
