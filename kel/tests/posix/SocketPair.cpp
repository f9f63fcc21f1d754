#include "SocketPair.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <system_error>

#include <fcntl.h>
#include <sys/socket.h>
#include <unistd.h>

namespace {

int toDescriptor(CSocketPair::Socket socket) { return static_cast<int>(socket); }

} // namespace

CSocketPair::CSocketPair() {
    std::array<int, 2> sockets{};
    if (::socketpair(AF_UNIX, SOCK_STREAM, 0, sockets.data()) != 0)
        throw std::system_error(errno, std::generic_category());
    near_ = static_cast<Socket>(sockets[0]);
    far_ = static_cast<Socket>(sockets[1]);
}

CSocketPair::~CSocketPair() {
    ::close(toDescriptor(near_));
    ::close(toDescriptor(far_));
}

int CSocketPair::getCount() const noexcept { return toDescriptor(std::max(near_, far_)) + 1; }

void CSocketPair::sendFromFar() const { EXPECT_EQ(::send(toDescriptor(far_), "x", 1, 0), 1); }

void CSocketPair::receiveNear() const {
    char byte;
    EXPECT_EQ(::recv(toDescriptor(near_), &byte, 1, 0), 1);
}

void CSocketPair::fillNear() const {
    EXPECT_EQ(::fcntl(toDescriptor(near_), F_SETFL, O_NONBLOCK), 0);
    const std::array<char, 4096> bytes{};
    while (::send(toDescriptor(near_), bytes.data(), bytes.size(), 0) > 0) {
    }
}

fd_set CSocketPair::makeSet(std::initializer_list<Socket> sockets) {
    fd_set set;
    FD_ZERO(&set);
    for (const Socket socket : sockets) FD_SET(toDescriptor(socket), &set);
    return set;
}

bool CSocketPair::isInSet(Socket socket, const fd_set& set) { return FD_ISSET(toDescriptor(socket), &set); }

CSocketPair::Socket CSocketPair::makeClosed() const {
    const int closed = ::dup(toDescriptor(near_));
    EXPECT_GE(closed, 0);
    ::close(closed);
    return static_cast<Socket>(closed);
}

bool CSocketPair::failedForNoSocket() { return errno == EBADF; }
