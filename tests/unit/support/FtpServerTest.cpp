#include "support/Ports.h"
#include "support/ProftpdServer.h"
#include "support/PyftpdlibServer.h"
#include "support/ScriptedFtpServer.h"
#include "unit/support/Curl.h"
#include "unit/support/Processes.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>

using namespace testsupport;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

namespace {

/// Fetches a file with each kind of security.
void expectFiles(const FtpServer& server) {
    const std::string login = FtpServer::userName() + ":" + FtpServer::password();
    for (const FtpSecurity security :
         {FtpSecurity::none, FtpSecurity::explicitTls, FtpSecurity::implicitTls}) {
        const std::string scheme = security == FtpSecurity::implicitTls ? "ftps://" : "ftp://";
        std::vector<std::string> arguments{"--user", login, "--cacert", server.caFile()};
        if (security == FtpSecurity::explicitTls) arguments.emplace_back("--ssl-reqd");
        arguments.push_back(scheme + server.host(security) + server.path("/readonly/kept.txt"));
        const CommandResult result = curl(arguments);
        EXPECT_EQ(result.exitStatus, 0) << result.standardError;
        EXPECT_EQ(result.standardOutput, "kept\n");
    }
}

template <class Server>
void expectEnd() {
    std::uint16_t port = 0;
    pid_t process = 0;
    {
        Server server;
        const std::string host = server.host(FtpSecurity::none);
        port = static_cast<std::uint16_t>(std::stoi(host.substr(host.find(':') + 1)));
        process = server.process().pid();
        EXPECT_TRUE(acceptsConnections(port));
    }
    EXPECT_FALSE(isProcessAlive(process));
    EXPECT_FALSE(acceptsConnections(port));
}

} // namespace

TEST(ProftpdServer, OffersItsFilesWithAndWithoutTls) {
    const ProftpdServer server;
    expectFiles(server);
    EXPECT_THAT(server.log(), HasSubstr("RETR "));
}

TEST(PyftpdlibServer, OffersItsFilesWithAndWithoutTls) { expectFiles(PyftpdlibServer()); }

TEST(ProftpdServer, EndsWithTheObject) { expectEnd<ProftpdServer>(); }

TEST(PyftpdlibServer, EndsWithTheObject) { expectEnd<PyftpdlibServer>(); }

TEST(ScriptedFtpServer, SaysYesUnlessToldOtherwise) {
    ScriptedFtpServer server;
    server.sendAsData("0123456789");
    server.answer("SIZE file", "500 what?\r\n");
    const CommandResult result = curl({"ftp://" + server.host() + "/file"});
    EXPECT_EQ(result.exitStatus, 0) << result.standardError;
    EXPECT_EQ(result.standardOutput, "0123456789");
    EXPECT_THAT(server.commands(), ElementsAre("USER anonymous", "PASS ftp@example.com", "PWD", "EPSV",
                                               "TYPE I", "SIZE file", "RETR file", "QUIT"));
    EXPECT_THAT(server.finish(), IsEmpty());
}

TEST(ScriptedFtpServer, TakesAFile) {
    ScriptedFtpServer server;
    server.receiveAsData(4);
    const TempDir folder;
    const CommandResult result =
        curl({"-T", folder.writeFile("file", "data"), "ftp://" + server.host() + "/file"});
    EXPECT_EQ(result.exitStatus, 0) << result.standardError;
    EXPECT_THAT(server.finish(), IsEmpty());
    EXPECT_EQ(server.dataReceived(), "data");
}
