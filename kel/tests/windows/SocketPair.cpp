#include "SocketPair.h"

#include <gtest/gtest.h>

#include <array>
#include <stdexcept>

#include <winsock2.h>

namespace {

/// Winsock counts its users, and ends with the last one.
struct Winsock {
    Winsock() {
        WSADATA data;
        if (::WSAStartup(MAKEWORD(2, 2), &data) != 0) throw std::runtime_error("Winsock does not start.");
    }
    Winsock(const Winsock&) = delete;
    Winsock& operator=(const Winsock&) = delete;
    ~Winsock() { ::WSACleanup(); }
};

void check(bool succeeded) {
    if (!succeeded) throw std::runtime_error("Winsock error " + std::to_string(::WSAGetLastError()));
}

} // namespace

CSocketPair::CSocketPair() {
    static const Winsock winsock;
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = ::htonl(INADDR_LOOPBACK);
    int length = sizeof(address);
    auto* const generic = reinterpret_cast<sockaddr*>(&address);
    const SOCKET listener = ::socket(AF_INET, SOCK_STREAM, 0);
    check(listener != INVALID_SOCKET && ::bind(listener, generic, length) == 0 && ::listen(listener, 1) == 0);
    check(::getsockname(listener, generic, &length) == 0);
    near_ = ::socket(AF_INET, SOCK_STREAM, 0);
    check(near_ != INVALID_SOCKET && ::connect(near_, generic, length) == 0);
    far_ = ::accept(listener, nullptr, nullptr);
    check(far_ != INVALID_SOCKET);
    ::closesocket(listener);
}

CSocketPair::~CSocketPair() {
    ::closesocket(near_);
    ::closesocket(far_);
}

// Not looked at on this system.
int CSocketPair::getCount() const noexcept { return 0; }

void CSocketPair::sendFromFar() const { EXPECT_EQ(::send(far_, "x", 1, 0), 1); }

void CSocketPair::receiveNear() const {
    char byte;
    EXPECT_EQ(::recv(near_, &byte, 1, 0), 1);
}

void CSocketPair::fillNear() const {
    unsigned long nonBlocking = 1;
    EXPECT_EQ(::ioctlsocket(near_, static_cast<long>(FIONBIO), &nonBlocking), 0);
    const std::array<char, 4096> bytes{};
    // The system moves bytes on to the other side for a while after it has refused more of them.
    for (int refusals = 0; refusals < 5; ++refusals) {
        while (::send(near_, bytes.data(), static_cast<int>(bytes.size()), 0) > 0) refusals = 0;
        ::Sleep(10);
    }
}

fd_set CSocketPair::makeSet(std::initializer_list<Socket> sockets) {
    fd_set set;
    FD_ZERO(&set);
    for (const Socket socket : sockets) set.fd_array[set.fd_count++] = socket;
    return set;
}

bool CSocketPair::isInSet(Socket socket, const fd_set& set) {
    fd_set copy = set;
    return FD_ISSET(socket, &copy) != 0;
}

CSocketPair::Socket CSocketPair::makeClosed() const {
    const SOCKET closed = ::socket(AF_INET, SOCK_STREAM, 0);
    EXPECT_NE(closed, INVALID_SOCKET);
    ::closesocket(closed);
    return closed;
}

bool CSocketPair::failedForNoSocket() { return ::WSAGetLastError() == WSAENOTSOCK; }
