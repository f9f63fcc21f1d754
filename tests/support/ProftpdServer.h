/// @file support/ProftpdServer.h
/// A real FTP server: ProFTPD (Debian packages proftpd-core and proftpd-mod-crypto).
#pragma once

#include "support/FtpServer.h"

namespace testsupport {

/// ProFTPD, which does not confine its user: clients name the folder by its place in the whole file system,
/// with two slashes in front. It lists the directory itself and the one above ("cdir", "pdir"), and reports
/// each command and its reply in log().
class ProftpdServer : public FtpServer {
public:
    /// Waits until connections are accepted. The server is started anew for each of them (ServerType inetd).
    /// @throws std::runtime_error with its output if it does not start.
    ProftpdServer();

    /// The commands so far, as "COMMAND -> CODE" on a line each.
    std::string log() const;

protected:
    std::unique_ptr<ChildProcess> launch(const std::vector<std::uint16_t>& ports) const override;

private:
    std::string configuration(const std::vector<std::uint16_t>& ports) const;
};

} // namespace testsupport
