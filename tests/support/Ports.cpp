#include "support/Ports.h"

#include "support/Wait.h"

#include <array>
#include <cerrno>
#include <chrono>
#include <stdexcept>

namespace testsupport {

namespace {

Socket bindToAnyPort() {
    Socket socket = bindLoopback(0);
    if (!socket.isOpen()) throw std::runtime_error("the system has no free port left");
    return socket;
}

/// Whether an attempt to connect has come to its end, well or not.
bool hasFinishedConnecting(const Socket& socket, std::chrono::milliseconds limit) {
    std::array<AwaitedSocket, 1> awaited{{{&socket, Readiness::writable}}};
    waitForAny(awaited, limit);
    return awaited[0].isReady;
}

} // namespace

std::vector<std::uint16_t> freePorts(std::size_t count) {
    std::vector<std::uint16_t> ports;
    while (ports.size() < count) ports.push_back(freePort());
    return ports;
}

bool acceptsConnections(std::uint16_t port) {
    const Socket socket = newSocket(Blocking::no);
    const int result = startConnecting(socket, port);
    if (result == 0) return true;
    if (result != EINPROGRESS || !hasFinishedConnecting(socket, pollInterval)) return false;
    return connectionError(socket) == 0;
}

RefusedPort::RefusedPort() : socket_(bindToAnyPort()), port_(localPort(socket_)) {}

UnansweredPort::UnansweredPort() : socket_(bindToAnyPort()), port_(localPort(socket_)) {
    listenOn(socket_, 0);
    constexpr std::size_t mostAttempts = 16;
    constexpr std::chrono::milliseconds loopbackAnswerTime{50};
    while (queue_.size() < mostAttempts) {
        const Socket& client = queue_.emplace_back(newSocket(Blocking::no));
        const int result = startConnecting(client, port_);
        if (result != 0 && result != EINPROGRESS)
            throw std::runtime_error("cannot fill a queue of connections");
        if (result == EINPROGRESS && !hasFinishedConnecting(client, loopbackAnswerTime)) return;
    }
    throw std::runtime_error("the queue of connections never filled up");
}

} // namespace testsupport
