/// @file support/Sockets.h
/// The few socket calls that the fixtures share. All sockets are IPv4 loopback TCP and close on exec.
#pragma once

#include "support/FileDescriptor.h"

#include <cstdint>

namespace testsupport {

/// A socket bound to 127.0.0.1.
/// @param port the port, 0 for one which the system picks.
/// @return a descriptor which is not open if the port is taken.
/// @throws std::system_error for any other failure.
FileDescriptor bindLoopback(std::uint16_t port);

/// The port to which a socket is bound.
std::uint16_t localPort(const FileDescriptor& socket);

/// Starts to connect to 127.0.0.1 on a non-blocking socket.
/// @return 0, or the errno of connect(), EINPROGRESS if it goes on.
int startConnecting(const FileDescriptor& socket, std::uint16_t port);

/// A new TCP socket.
/// @param flags SOCK_NONBLOCK or 0.
FileDescriptor newSocket(int flags);

/// Sends what is in the socket's small buffers at once, so that each send is a segment of its own.
void sendWithoutDelay(const FileDescriptor& socket);

/// Closes a connection with a reset instead of an orderly end.
void resetConnection(FileDescriptor& socket);

} // namespace testsupport
