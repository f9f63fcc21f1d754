/// @file support/PyftpdlibServer.h
/// A real FTP server of another make: pyftpdlib (Debian packages python3-pyftpdlib and python3-openssl).
#pragma once

#include "support/FtpServer.h"

namespace testsupport {

/// pyftpdlib, which confines its user to the folder: clients name it "/". It lists neither the directory
/// itself nor the one above.
class PyftpdlibServer : public FtpServer {
public:
    /// Starts the server and waits until it accepts connections.
    /// @throws std::runtime_error with its output if it does not start.
    PyftpdlibServer();

protected:
    std::unique_ptr<ChildProcess> launch(const std::vector<std::uint16_t>& ports) const override;
};

} // namespace testsupport
