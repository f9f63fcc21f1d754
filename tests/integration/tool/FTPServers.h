/// The FTP servers that the tests of `vantra ftp` share.
#pragma once

#include "Tool.h"

#include "support/FtpServer.h"
#include "support/ServerFile.h"
#include "support/TempDir.h"

#include <gtest/gtest.h>

#include <ostream>
#include <string>
#include <string_view>
#include <vector>

namespace tooltest {

/// A real server and a way to reach it.
struct FtpPeer {
    std::string name;
    testsupport::FtpServer& (*server)();
    testsupport::FtpSecurity security;

    friend std::ostream& operator<<(std::ostream& stream, const FtpPeer& peer) { return stream << peer.name; }
};

/// Tests of `vantra ftp` that run with two makes of servers, without TLS and with explicit and implicit TLS.
/// Each has a folder of its own on the server.
class ToolFtp : public testing::TestWithParam<FtpPeer> {
protected:
    ToolFtp();

    static testsupport::FtpServer& server() { return GetParam().server(); }

    /// Runs "vantra ftp ARGUMENTS" with login, TLS and certificate.
    Outcome runFtp(std::vector<std::string> arguments, std::string_view standardInput = {}) const;

    /// The URL of a path in the test's own folder, percent-encoded already.
    std::string url(std::string_view path) const;
    /// The URL of any path of the server.
    static std::string serverUrl(std::string_view path);
    /// As url(), counted from the directory of the login.
    std::string urlFromLogin(std::string_view path) const;
    /// The same files in the server's file system; see support/ServerFile.h.
    std::string fileAt(std::string_view path) const { return server().file(folder_ + std::string(path)); }
    void writeFile(std::string_view path, std::string_view content) const;
    std::string readFile(std::string_view path) const { return testsupport::readServerFile(fileAt(path)); }

    testsupport::TempDir local_;

private:
    static std::string loginUrl();

    std::string folder_; // from "/" on
    std::string passwordFile_;
};

} // namespace tooltest
