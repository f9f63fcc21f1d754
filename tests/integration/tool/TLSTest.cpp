#include "Tool.h"

#include "support/CertificateAuthority.h"
#include "support/NginxServer.h"
#include "support/TempDir.h"

#include <gmock/gmock.h>

using namespace testsupport;
using namespace tooltest;

namespace {

constexpr const char* untrusted = ": SSL peer certificate or SSH remote key was not OK: "
                                  "SSL certificate problem: unable to get local issuer certificate";

} // namespace

TEST(ToolTLS, TrustsTheFileGiven) {
    NginxServer& server = webServer();
    const std::string url = server.httpsUrl("/hello.txt");
    EXPECT_EQ(runTool({"get", "--cacert", server.caFile(), url}), succeeded(NginxServer::helloContent()));
}

TEST(ToolTLS, RefusesAServerThatNobodyVouchesFor) {
    NginxServer& server = webServer();
    CertificateAuthority other("another CA");
    const std::string url = server.httpsUrl("/hello.txt");
    EXPECT_EQ(runTool({"get", url}), failed(url + untrusted));
    EXPECT_EQ(runTool({"get", "--cacert", other.caFile(), url}), failed(url + untrusted));
}

TEST(ToolTLS, RefusesAServerOfAnotherName) {
    NginxServer& server = webServer();
    const std::uint16_t port = server.ports().wrongHost;
    const std::string url = NginxServer::httpsUrl(port, "/hello.txt");
    const Outcome outcome = runTool({"get", "--cacert", server.caFile(), url});
    EXPECT_EQ(outcome,
              failed(url + ": SSL peer certificate or SSH remote key was not OK: SSL: no alternative "
                           "certificate subject name matches target host name 'localhost'"));
}

TEST(ToolTLS, TakesAnyServerWhenItIsInsecure) {
    NginxServer& server = webServer();
    for (const std::string& url :
         {server.httpsUrl("/hello.txt"), NginxServer::httpsUrl(server.ports().wrongHost, "/hello.txt"),
          NginxServer::httpsUrl(server.ports().expired, "/hello.txt")})
        EXPECT_EQ(runTool({"get", "--insecure", url}), succeeded(NginxServer::helloContent())) << url;
}

TEST(ToolTLS, NamesACAFileThatCannotBeRead) {
    TempDir folder;
    const std::string missing = folder.file("missing.pem");
    const std::string url = "https://localhost:1/";
    EXPECT_EQ(runTool({"get", "--cacert", missing, url}),
              failed("Error opening file '" + nativeName(missing) + "': No such file or directory."));
    EXPECT_EQ(runTool({"get", "--cacert", folder.path(), url}),
              failed("Error opening file '" + nativeName(folder.path()) + "': Is a directory."));
}

TEST(ToolTLS, RefusesACAFileWithoutCertificates) {
    NginxServer& server = webServer();
    TempDir folder;
    const std::string file = folder.writeFile("empty.pem", "not a certificate\n");
    const std::string url = server.httpsUrl("/hello.txt");
    EXPECT_EQ(runTool({"get", "--cacert", file, url}),
              failed(url +
                     ": Problem with the SSL CA cert (path? access rights?): error setting certificate "
                     "file: " +
                     nativeName(file)));
}
