#include "support/windows/Winsock.h"

#include "support/SystemError.h"

#include <cerrno>
#include <stdexcept>

namespace testsupport {

void startWinsock() {
    static const bool isStarted = [] {
        WSADATA data;
        return ::WSAStartup(MAKEWORD(2, 2), &data) == 0;
    }();
    if (!isStarted) throw std::runtime_error("Winsock does not start");
}

sockaddr_in loopbackAddress(std::uint16_t port) {
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = ::htonl(INADDR_LOOPBACK);
    address.sin_port = ::htons(port);
    return address;
}

int winsockErrno() {
    switch (::WSAGetLastError()) {
    case WSAEWOULDBLOCK:
    case WSAETIMEDOUT: // the time limit of a blocking call, which POSIX systems tell of by EAGAIN
        return EAGAIN;
    case WSAEINPROGRESS:
    case WSAEALREADY:
        return EINPROGRESS;
    case WSAEINTR:
        return EINTR;
    case WSAEADDRINUSE:
        return EADDRINUSE;
    case WSAECONNREFUSED:
        return ECONNREFUSED;
    case WSAECONNRESET:
        return ECONNRESET;
    case WSAECONNABORTED:
        return ECONNABORTED;
    case WSAESHUTDOWN:
        return EPIPE;
    case WSAENOTCONN:
        return ENOTCONN;
    case WSAENOTSOCK:
        return ENOTSOCK;
    case WSAEACCES:
        return EACCES;
    case WSAEMFILE:
        return EMFILE;
    case WSAENOBUFS:
        return ENOBUFS;
    case WSAEINVAL:
        return EINVAL;
    default:
        return EIO;
    }
}

void throwWinsockError(const std::string& action) {
    const int code = ::WSAGetLastError();
    errno = winsockErrno();
    throwErrno(action + " (Winsock error " + std::to_string(code) + ")");
}

} // namespace testsupport
