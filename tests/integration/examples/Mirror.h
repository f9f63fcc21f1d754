/// What the tests of ftp_mirror share.
#pragma once

#include "Example.h"

#include "support/ProftpdServer.h"
#include "support/PyftpdlibServer.h"
#include "support/ServerFile.h"
#include "support/TempDir.h"

#include <gtest/gtest.h>

#include <string>
#include <type_traits>

/// Tests with two makes of servers.
template <class Server>
class Mirror : public testing::Test {
protected:
    static testsupport::FtpServer& server() {
        static Server server;
        return server;
    }

    static testsupport::Environment environment() {
        return {{"FTP_USER", testsupport::FtpServer::userName()},
                {"FTP_PASSWORD", testsupport::FtpServer::password()},
                {"SSL_CERT_FILE", server().caFile()}};
    }

    /// Writes a file on the server, in a folder that may be missing.
    static void writeFile(const std::string& path, const std::string& content) {
        testsupport::makeServerFolder(server().file(path.substr(0, path.rfind('/'))));
        testsupport::writeServerFile(server().file(path), content);
    }

    /// Runs the program from a directory of the server to the test's folder.
    Outcome mirror(const std::string& directory) const {
        return runExample(
            "ftp_mirror",
            {server().host(testsupport::FtpSecurity::explicitTls), server().path(directory), folder_.path()},
            environment());
    }

    const testsupport::TempDir folder_;
};

struct MirrorServerNames {
    template <class Server>
    static std::string GetName(int /*index*/) {
        return std::is_same_v<Server, testsupport::ProftpdServer> ? "Proftpd" : "Pyftpdlib";
    }
};

using MirrorServers = testing::Types<testsupport::ProftpdServer, testsupport::PyftpdlibServer>;
