#include "support/Sockets.h"

#include "support/windows/Winsock.h"

#include <algorithm>
#include <cerrno>
#include <climits>
#include <stdexcept>
#include <thread>
#include <vector>

#include <winsock2.h>

#include <ws2tcpip.h>

namespace testsupport {

namespace {

SOCKET handleOf(const Socket& socket) { return static_cast<SOCKET>(socket.get()); }

/// The result of a call that answers -1 for a failure, with its reason in errno.
std::ptrdiff_t withErrno(int result) {
    if (result < 0) errno = winsockErrno();
    return result;
}

int lengthOf(std::size_t size) { return static_cast<int>(std::min<std::size_t>(size, INT_MAX)); }

template <class Value>
void setOption(const Socket& socket, int level, int option, const Value& value, const char* action) {
    if (::setsockopt(handleOf(socket), level, option, reinterpret_cast<const char*>(&value), sizeof value) !=
        0)
        throwWinsockError(action);
}

short eventFor(Readiness readiness) {
    switch (readiness) {
    case Readiness::readable:
        return POLLRDNORM;
    case Readiness::writable:
        return POLLWRNORM;
    case Readiness::peerIsGone:
        return 0; // told without having been asked for, as POLLHUP
    }
    throw std::logic_error("no such readiness");
}

} // namespace

void Socket::reset() {
    if (isOpen()) ::closesocket(static_cast<SOCKET>(release()));
}

Socket newSocket(Blocking blocking) {
    startWinsock();
    Socket socket(static_cast<Socket::Handle>(::WSASocketW(
        AF_INET, SOCK_STREAM, IPPROTO_TCP, nullptr, 0, WSA_FLAG_OVERLAPPED | WSA_FLAG_NO_HANDLE_INHERIT)));
    if (!socket.isOpen()) throwWinsockError("make a socket");
    if (blocking == Blocking::no) makeNonBlocking(socket);
    return socket;
}

Socket bindLoopback(std::uint16_t port) {
    Socket socket = newSocket(Blocking::yes);
    const sockaddr_in address = loopbackAddress(port);
    if (::bind(handleOf(socket), reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0)
        return socket;
    if (winsockErrno() != EADDRINUSE) throwWinsockError("bind to 127.0.0.1");
    return Socket();
}

std::uint16_t localPort(const Socket& socket) {
    sockaddr_in address{};
    int size = sizeof address;
    if (::getsockname(handleOf(socket), reinterpret_cast<sockaddr*>(&address), &size) != 0)
        throwWinsockError("ask a socket for its port");
    return ::ntohs(address.sin_port);
}

void listenOn(const Socket& socket, int backlog) {
    if (::listen(handleOf(socket), backlog) != 0) throwWinsockError("listen");
}

void makeNonBlocking(const Socket& socket) {
    u_long on = 1;
    if (::ioctlsocket(handleOf(socket), static_cast<long>(FIONBIO), &on) != 0)
        throwWinsockError("make a socket non-blocking");
}

Socket acceptConnection(const Socket& listener) {
    Socket socket(static_cast<Socket::Handle>(::accept(handleOf(listener), nullptr, nullptr)));
    if (socket.isOpen())
        makeNonBlocking(socket);
    else
        errno = winsockErrno();
    return socket;
}

int startConnecting(const Socket& socket, std::uint16_t port) {
    const sockaddr_in address = loopbackAddress(port);
    if (::connect(handleOf(socket), reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0)
        return 0;
    const int error = winsockErrno();
    return error == EAGAIN ? EINPROGRESS : error;
}

int connectionError(const Socket& socket) {
    int error = 0;
    int size = sizeof error;
    if (::getsockopt(handleOf(socket), SOL_SOCKET, SO_ERROR, reinterpret_cast<char*>(&error), &size) != 0)
        return winsockErrno();
    if (error == 0) return 0;
    ::WSASetLastError(error);
    return winsockErrno();
}

std::ptrdiff_t receive(const Socket& socket, std::span<char> buffer) {
    return withErrno(::recv(handleOf(socket), buffer.data(), lengthOf(buffer.size()), 0));
}

std::ptrdiff_t sendSome(const Socket& socket, std::string_view bytes) {
    return withErrno(::send(handleOf(socket), bytes.data(), lengthOf(bytes.size()), 0));
}

bool endSending(const Socket& socket) { return ::shutdown(handleOf(socket), SD_SEND) == 0; }

void resetConnection(Socket& socket) {
    const linger noLinger{1, 0};
    setOption(socket, SOL_SOCKET, SO_LINGER, noLinger, "set SO_LINGER");
    socket.reset();
}

void waitUntilDelivered(const Socket& /*socket*/, std::chrono::milliseconds limit) {
    // Winsock does not tell what is still to be sent. Over loopback all arrives at once, unless the peer's
    // buffers are full.
    constexpr std::chrono::milliseconds loopbackTime{50};
    std::this_thread::sleep_for(std::min(limit, loopbackTime));
}

void sendWithoutDelay(const Socket& socket) {
    const BOOL on = TRUE;
    setOption(socket, IPPROTO_TCP, TCP_NODELAY, on, "set TCP_NODELAY");
}

void setTimeLimit(const Socket& socket, std::chrono::milliseconds limit) {
    const auto time = static_cast<DWORD>(limit.count());
    for (const int option : {SO_RCVTIMEO, SO_SNDTIMEO})
        setOption(socket, SOL_SOCKET, option, time, "set a socket's time limit");
}

void setReceiveBufferSize(const Socket& socket, int bytes) {
    setOption(socket, SOL_SOCKET, SO_RCVBUF, bytes, "set SO_RCVBUF");
}

void waitForAny(std::span<AwaitedSocket> sockets, std::optional<std::chrono::milliseconds> limit) {
    std::vector<WSAPOLLFD> entries;
    std::vector<AwaitedSocket*> awaited;
    for (AwaitedSocket& socket : sockets) {
        socket.isReady = false;
        if (socket.socket == nullptr) continue;
        entries.push_back({handleOf(*socket.socket), eventFor(socket.readiness), 0});
        awaited.push_back(&socket);
    }
    const int time = limit ? static_cast<int>(limit->count()) : -1;
    if (::WSAPoll(entries.data(), static_cast<ULONG>(entries.size()), time) < 0)
        throwWinsockError("wait for a socket");
    for (std::size_t index = 0; index < entries.size(); ++index)
        awaited[index]->isReady = entries[index].revents != 0;
}

} // namespace testsupport
