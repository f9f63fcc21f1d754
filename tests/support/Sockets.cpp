#include "support/Sockets.h"

#include <arpa/inet.h>
#include <cerrno>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <sys/socket.h>

namespace testsupport {

namespace {

sockaddr_in loopbackAddress(std::uint16_t port) {
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    address.sin_port = htons(port);
    return address;
}

} // namespace

FileDescriptor newSocket(int flags) {
    return checkedDescriptor(::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC | flags, 0), "make a socket");
}

FileDescriptor bindLoopback(std::uint16_t port) {
    FileDescriptor socket = newSocket(0);
    const sockaddr_in address = loopbackAddress(port);
    if (::bind(socket.get(), reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0) return socket;
    if (errno != EADDRINUSE) throwErrno("bind to 127.0.0.1");
    return FileDescriptor();
}

std::uint16_t localPort(const FileDescriptor& socket) {
    sockaddr_in address{};
    socklen_t size = sizeof address;
    if (::getsockname(socket.get(), reinterpret_cast<sockaddr*>(&address), &size) != 0) {
        throwErrno("ask a socket for its port");
    }
    return ntohs(address.sin_port);
}

int startConnecting(const FileDescriptor& socket, std::uint16_t port) {
    const sockaddr_in address = loopbackAddress(port);
    const int result = ::connect(socket.get(), reinterpret_cast<const sockaddr*>(&address), sizeof address);
    return result == 0 ? 0 : errno;
}

void sendWithoutDelay(const FileDescriptor& socket) {
    const int on = 1;
    if (::setsockopt(socket.get(), IPPROTO_TCP, TCP_NODELAY, &on, sizeof on) != 0)
        throwErrno("set TCP_NODELAY");
}

void resetConnection(FileDescriptor& socket) {
    const linger noLinger{1, 0};
    if (::setsockopt(socket.get(), SOL_SOCKET, SO_LINGER, &noLinger, sizeof noLinger) != 0) {
        throwErrno("set SO_LINGER");
    }
    socket.reset();
}

} // namespace testsupport
