#include "FTPServers.h"

#include "support/ProftpdServer.h"
#include "support/PyftpdlibServer.h"

#include <algorithm>

using testsupport::FtpSecurity;
using testsupport::FtpServer;

namespace tooltest {

namespace {

std::string testFolder() {
    std::string name = testing::UnitTest::GetInstance()->current_test_info()->name();
    std::ranges::replace(name, '/', '-');
    return "/" + name;
}

} // namespace

ToolFtp::ToolFtp()
    : folder_(testFolder()), passwordFile_(local_.writeFile("password", FtpServer::password() + "\n")) {
    testsupport::makeServerFolder(fileAt(""));
}

Outcome ToolFtp::runFtp(std::vector<std::string> arguments, std::string_view standardInput) const {
    arguments.insert(arguments.begin(), "ftp");
    const std::vector<std::string> common{"--user",   FtpServer::userName(), "--password-file", passwordFile_,
                                          "--cacert", server().caFile()};
    arguments.insert(arguments.end(), common.begin(), common.end());
    if (GetParam().security == FtpSecurity::explicitTls)
        arguments.insert(arguments.end(), {"--tls", "explicit"});
    return runTool(arguments, standardInput);
}

std::string ToolFtp::loginUrl() {
    const std::string scheme = GetParam().security == FtpSecurity::implicitTls ? "ftps://" : "ftp://";
    return scheme + server().host(GetParam().security);
}

std::string ToolFtp::serverUrl(std::string_view path) { return loginUrl() + server().path(path); }

std::string ToolFtp::urlFromLogin(std::string_view path) const {
    return loginUrl() + folder_ + std::string(path);
}

std::string ToolFtp::url(std::string_view path) const { return serverUrl(folder_ + std::string(path)); }

void ToolFtp::writeFile(std::string_view path, std::string_view content) const {
    const std::string file = fileAt(path);
    testsupport::makeServerFolder(file.substr(0, file.rfind('/')));
    testsupport::writeServerFile(file, content);
}

namespace {

template <class Server>
FtpServer& shared() {
    static Server server;
    return server;
}

} // namespace

using testsupport::ProftpdServer;
using testsupport::PyftpdlibServer;

INSTANTIATE_TEST_SUITE_P(
    Peer, ToolFtp,
    testing::Values(FtpPeer{"ProftpdPlain", shared<ProftpdServer>, FtpSecurity::none},
                    FtpPeer{"ProftpdExplicitTLS", shared<ProftpdServer>, FtpSecurity::explicitTls},
                    FtpPeer{"ProftpdImplicitTLS", shared<ProftpdServer>, FtpSecurity::implicitTls},
                    FtpPeer{"PyftpdlibPlain", shared<PyftpdlibServer>, FtpSecurity::none},
                    FtpPeer{"PyftpdlibExplicitTLS", shared<PyftpdlibServer>, FtpSecurity::explicitTls},
                    FtpPeer{"PyftpdlibImplicitTLS", shared<PyftpdlibServer>, FtpSecurity::implicitTls}),
    [](const auto& tested) { return tested.param.name; });

} // namespace tooltest
