/// @file support/TinyproxyServer.h
/// A real forward proxy: tinyproxy (Debian package tinyproxy).
#pragma once

#include "support/ChildProcess.h"
#include "support/TempDir.h"

#include <chrono>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace testsupport {

/// How TinyproxyServer is set up.
struct TinyproxyOptions {
    std::vector<std::uint16_t>
        connectPorts;     ///< to which CONNECT is allowed; none (the default): to every port
    std::string userName; ///< empty (the default): no authentication
    std::string password; ///< neither may be empty with authentication, nor hold blanks
};

/// A tinyproxy of the test's own on a free port of 127.0.0.1. It answers missing credentials with 407 and
/// wrong ones with 401, and adds "Via: 1.1 testproxy (tinyproxy/<version>)" to requests that are not
/// tunnelled.
///
/// Thread safety: const members from any thread.
class TinyproxyServer {
public:
    /// Starts the proxy and waits until it accepts connections.
    /// @throws std::runtime_error with its output if it does not start.
    explicit TinyproxyServer(TinyproxyOptions options = {});

    std::uint16_t port() const { return port_; }

    /// "http://127.0.0.1:<port>".
    std::string url() const;

    /// The log so far: a line for each connection ("Connect") and each request ("Request"). It begins with
    /// the connection which found out that the proxy had started.
    std::string log() const;

    /// Waits until the log contains a text; the proxy may write it after the client has its answer.
    /// @return whether it did within the limit.
    bool waitForLog(std::string_view text, std::chrono::milliseconds limit = std::chrono::seconds(10)) const;

    ChildProcess& process() { return *process_; }

private:
    std::unique_ptr<ChildProcess> launch(std::uint16_t port, const TinyproxyOptions& options) const;

    TempDir folder_;
    std::uint16_t port_ = 0;
    std::unique_ptr<ChildProcess> process_;
};

} // namespace testsupport
