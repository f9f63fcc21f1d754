#include "support/Event.h"

#include "support/windows/Winsock.h"

#include <winsock2.h>

namespace testsupport {

/// A datagram socket that is connected to itself: the only kind of object of this system that can be waited
/// for together with sockets.
Event::Event() {
    startWinsock();
    const SOCKET socket = ::socket(AF_INET, SOCK_DGRAM, 0);
    socket_ = Socket(static_cast<Socket::Handle>(socket));
    sockaddr_in address = loopbackAddress(0);
    int size = sizeof address;
    if (!socket_.isOpen() || ::bind(socket, reinterpret_cast<const sockaddr*>(&address), size) != 0 ||
        ::getsockname(socket, reinterpret_cast<sockaddr*>(&address), &size) != 0 ||
        ::connect(socket, reinterpret_cast<const sockaddr*>(&address), size) != 0) {
        throwWinsockError("make an event");
    }
}

void Event::set() {
    if (::send(static_cast<SOCKET>(socket_.get()), "", 1, 0) != 1) throwWinsockError("set an event");
}

} // namespace testsupport
