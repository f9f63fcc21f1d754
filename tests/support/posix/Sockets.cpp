#include "support/Sockets.h"

#include "support/SystemError.h"
#include "support/Wait.h"

#include <arpa/inet.h>
#include <array>
#include <cerrno>
#include <fcntl.h>
#include <linux/sockios.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <poll.h>
#include <stdexcept>
#include <sys/ioctl.h>
#include <sys/socket.h>
#include <sys/time.h>
#include <unistd.h>

namespace testsupport {

namespace {

int descriptorOf(const Socket& socket) { return static_cast<int>(socket.get()); }

sockaddr_in loopbackAddress(std::uint16_t port) {
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    address.sin_port = htons(port);
    return address;
}

short eventFor(Readiness readiness) {
    switch (readiness) {
    case Readiness::readable:
        return POLLIN;
    case Readiness::writable:
        return POLLOUT;
    case Readiness::peerIsGone:
        return POLLRDHUP;
    }
    throw std::logic_error("no such readiness");
}

} // namespace

void Socket::reset() {
    if (isOpen()) ::close(static_cast<int>(release()));
}

Socket newSocket(Blocking blocking) {
    const int flags = SOCK_CLOEXEC | (blocking == Blocking::no ? SOCK_NONBLOCK : 0);
    Socket socket(::socket(AF_INET, SOCK_STREAM | flags, 0));
    if (!socket.isOpen()) throwErrno("make a socket");
    return socket;
}

Socket bindLoopback(std::uint16_t port) {
    Socket socket = newSocket(Blocking::yes);
    const sockaddr_in address = loopbackAddress(port);
    if (::bind(descriptorOf(socket), reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0)
        return socket;
    if (errno != EADDRINUSE) throwErrno("bind to 127.0.0.1");
    return Socket();
}

std::uint16_t localPort(const Socket& socket) {
    sockaddr_in address{};
    socklen_t size = sizeof address;
    if (::getsockname(descriptorOf(socket), reinterpret_cast<sockaddr*>(&address), &size) != 0) {
        throwErrno("ask a socket for its port");
    }
    return ntohs(address.sin_port);
}

void listenOn(const Socket& socket, int backlog) {
    if (::listen(descriptorOf(socket), backlog) != 0) throwErrno("listen");
}

void makeNonBlocking(const Socket& socket) {
    if (::fcntl(descriptorOf(socket), F_SETFL, O_NONBLOCK) != 0) throwErrno("make a socket non-blocking");
}

Socket acceptConnection(const Socket& listener) {
    return Socket(::accept4(descriptorOf(listener), nullptr, nullptr, SOCK_NONBLOCK | SOCK_CLOEXEC));
}

int startConnecting(const Socket& socket, std::uint16_t port) {
    const sockaddr_in address = loopbackAddress(port);
    const int result =
        ::connect(descriptorOf(socket), reinterpret_cast<const sockaddr*>(&address), sizeof address);
    return result == 0 ? 0 : errno;
}

int connectionError(const Socket& socket) {
    int error = 0;
    socklen_t size = sizeof error;
    return ::getsockopt(descriptorOf(socket), SOL_SOCKET, SO_ERROR, &error, &size) == 0 ? error : errno;
}

std::ptrdiff_t receive(const Socket& socket, std::span<char> buffer) {
    return ::recv(descriptorOf(socket), buffer.data(), buffer.size(), 0);
}

std::ptrdiff_t sendSome(const Socket& socket, std::string_view bytes) {
    return ::send(descriptorOf(socket), bytes.data(), bytes.size(), MSG_NOSIGNAL);
}

bool endSending(const Socket& socket) { return ::shutdown(descriptorOf(socket), SHUT_WR) == 0; }

void resetConnection(Socket& socket) {
    const linger noLinger{1, 0};
    if (::setsockopt(descriptorOf(socket), SOL_SOCKET, SO_LINGER, &noLinger, sizeof noLinger) != 0) {
        throwErrno("set SO_LINGER");
    }
    socket.reset();
}

void waitUntilDelivered(const Socket& socket, std::chrono::milliseconds limit) {
    waitUntil(
        [&] {
            int unsent = 0;
            return ::ioctl(descriptorOf(socket), SIOCOUTQ, &unsent) != 0 || unsent == 0;
        },
        limit);
}

void sendWithoutDelay(const Socket& socket) {
    const int on = 1;
    if (::setsockopt(descriptorOf(socket), IPPROTO_TCP, TCP_NODELAY, &on, sizeof on) != 0)
        throwErrno("set TCP_NODELAY");
}

void setTimeLimit(const Socket& socket, std::chrono::milliseconds limit) {
    const auto seconds = std::chrono::duration_cast<std::chrono::seconds>(limit);
    const auto rest = std::chrono::duration_cast<std::chrono::microseconds>(limit - seconds);
    const timeval time{seconds.count(), rest.count()};
    for (const int option : {SO_RCVTIMEO, SO_SNDTIMEO}) {
        if (::setsockopt(descriptorOf(socket), SOL_SOCKET, option, &time, sizeof time) != 0) {
            throwErrno("set a socket's time limit");
        }
    }
}

void setReceiveBufferSize(const Socket& socket, int bytes) {
    if (::setsockopt(descriptorOf(socket), SOL_SOCKET, SO_RCVBUF, &bytes, sizeof bytes) != 0)
        throwErrno("set SO_RCVBUF");
}

void waitForAny(std::span<AwaitedSocket> sockets, std::optional<std::chrono::milliseconds> limit) {
    constexpr std::size_t most = 4;
    std::array<pollfd, most> entries{};
    if (sockets.size() > most) throw std::logic_error("too many sockets to wait for");
    for (std::size_t index = 0; index < sockets.size(); ++index) {
        // poll() passes over an entry with descriptor -1.
        const Socket* const socket = sockets[index].socket;
        entries.at(index) = {socket != nullptr ? descriptorOf(*socket) : -1,
                             eventFor(sockets[index].readiness), 0};
    }
    const int time = limit ? static_cast<int>(limit->count()) : -1;
    if (::poll(entries.data(), sockets.size(), time) < 0 && errno != EINTR) throwErrno("wait for a socket");
    for (std::size_t index = 0; index < sockets.size(); ++index)
        sockets[index].isReady = entries.at(index).revents != 0;
}

} // namespace testsupport
