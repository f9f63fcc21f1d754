/// @file support/Ports.h
/// Loopback TCP ports: free ones for servers, and ones which refuse or never answer.
#pragma once

#include "support/Sockets.h"

#include <cstddef>
#include <cstdint>
#include <vector>

namespace testsupport {

/// A TCP port of 127.0.0.1 on which nothing listens, for a server which is about to start.
///
/// No port is handed out twice in a process, nor by two test processes which run at the same time. The ports
/// lie below the range from which the system serves bind-to-0 and outgoing connections (ip_local_port_range),
/// so that no client takes one between this call and the server's start.
///
/// Thread safety: any thread may call it.
/// @throws std::runtime_error if no port is free.
std::uint16_t freePort();

/// Several free ports, all different; see freePort().
std::vector<std::uint16_t> freePorts(std::size_t count);

/// Whether something on 127.0.0.1 accepts a connection to the port. It is made and closed at once.
bool acceptsConnections(std::uint16_t port);

/// A port which refuses every connection for as long as the object lives: it is bound, so nobody else can
/// listen on it, and does not listen itself.
class RefusedPort {
public:
    RefusedPort();
    std::uint16_t port() const { return port_; }

private:
    Socket socket_;
    std::uint16_t port_;
};

/// A port which leaves every connection attempt unanswered for as long as the object lives, so that
/// connecting hangs: its queue of connections to accept is full and never emptied.
class UnansweredPort {
public:
    UnansweredPort();
    std::uint16_t port() const { return port_; }

private:
    Socket socket_;
    std::uint16_t port_;
    std::vector<Socket> queue_;
};

} // namespace testsupport
