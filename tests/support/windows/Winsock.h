/// @file support/windows/Winsock.h
/// What the files about sockets share.
#pragma once

#include <cstdint>
#include <string>

#include <winsock2.h>

namespace testsupport {

/// Makes Winsock ready for this process; to be called before the first socket is made.
void startWinsock();

sockaddr_in loopbackAddress(std::uint16_t port);

/// The errno for the last failed call.
int winsockErrno();

/// Throws a std::system_error for the last failed call; see throwErrno().
[[noreturn]] void throwWinsockError(const std::string& action);

} // namespace testsupport
