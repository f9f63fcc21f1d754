/// @file support/S3Server.h
/// A real object store with the S3 interface: OpenStack Swift (Debian packages python3-swift, swift-proxy,
/// swift-account, swift-container and swift-object).
///
///     S3Server server({"bucket"});
///     client->setEndpoint(server.url());
#pragma once

#include "support/ChildProcess.h"
#include "support/TempDir.h"

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace testsupport {

/// An object store of the test's own on a free port of 127.0.0.1, plain HTTP/1.1. It verifies the header
/// signatures of requests, and the digests of what it is given. For TLS put a ReverseProxy of NginxServer
/// before it.
///
/// Thread safety: const members from any thread.
class S3Server {
public:
    /// Starts the server and waits until it accepts connections, which takes about a second.
    /// @param buckets that it has from the start.
    /// @throws std::runtime_error with its output if it does not start.
    explicit S3Server(std::vector<std::string> buckets);

    std::uint16_t port() const { return port_; }

    /// "http://127.0.0.1:<port>" and the path.
    std::string url(std::string_view path = "/") const;

    /// The user to whom the buckets belong.
    static std::string accessKey() { return "test:tester"; }
    static std::string secretKey() { return "testing"; }

    /// A user who may do nothing.
    static std::string otherAccessKey() { return "test:other"; }
    static std::string otherSecretKey() { return "testing2"; }

    ChildProcess& process() { return *process_; }

private:
    std::unique_ptr<ChildProcess> launch(const std::vector<std::uint16_t>& ports);

    std::vector<std::string> buckets_;
    int launches_ = 0;
    TempDir folder_;
    std::uint16_t port_ = 0;
    std::unique_ptr<ChildProcess> process_;
};

} // namespace testsupport
