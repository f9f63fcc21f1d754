#include "System.h"
#include "Tool.h"

#include "support/Ports.h"
#include "support/ScriptedServer.h"
#include "support/TempDir.h"

#include <gmock/gmock.h>

#include <filesystem>

using namespace testsupport;
using namespace tooltest;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using testing::StartsWith;

namespace {

/// Whether a parser that nobody here wrote takes the file for XML.
void expectWellFormed(const std::string& file) {
    const CommandResult result = runCommand(
        {"python3", "-c", "import sys, xml.dom.minidom; xml.dom.minidom.parse(sys.argv[1])", file});
    EXPECT_EQ(result.exitStatus, 0) << result.standardError;
}

} // namespace

TEST(ToolLog, HoldsTheConversation) {
    NginxServer& server = webServer();
    TempDir folder;
    const std::string url = server.url("/hello.txt");
    EXPECT_EQ(runTool({"get", "--log", folder.file("log.xml"), url}), succeeded(NginxServer::helloContent()));
    expectWellFormed(folder.file("log.xml"));
    const std::string log = folder.readFile("log.xml");
    EXPECT_THAT(log, StartsWith("<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
                                "<NetRequest httpMethod=\"\" url=\"" +
                                url + "\">\n"));
    EXPECT_THAT(log, HasSubstr(">GET /hello.txt HTTP/1.1&#13;\n"));
    EXPECT_THAT(log, HasSubstr(">HTTP/1.1 200 OK<"));
    EXPECT_THAT(log, HasSubstr(" bytes=\"26\">hello%20from%20the%20web%20server%0A</receive>"));
    EXPECT_THAT(filesIn(folder.path()), ElementsAre("log.xml"));
}

TEST(ToolLog, IsWrittenWhenTheTransferFails) {
    NginxServer& server = webServer();
    TempDir folder;
    EXPECT_EQ(runTool({"get", "--log", folder.file("404.xml"), server.url("/s404")}).exitStatus, 1);
    expectWellFormed(folder.file("404.xml"));
    EXPECT_THAT(folder.readFile("404.xml"), HasSubstr(">HTTP/1.1 404 Not Found<"));

    RefusedPort port;
    const std::string url = "http://127.0.0.1:" + std::to_string(port.port()) + "/";
    EXPECT_EQ(runTool({"get", "--log", folder.file("refused.xml"), url}).exitStatus, 1);
    expectWellFormed(folder.file("refused.xml"));
    EXPECT_THAT(folder.readFile("refused.xml"), HasSubstr("Connection refused"));
}

TEST(ToolLog, HoldsNoPassword) {
    NginxServer& server = webServer();
    TempDir folder;
    EXPECT_EQ(runTool({"get", "--log", folder.file("log.xml"), "--header-file",
                       folder.writeFile("headers", "X-Authorization: token\n"), "--user", "user",
                       "--password-file", "-", server.url("/basic/hello.txt")},
                      "secret"),
              succeeded(NginxServer::helloContent()));
    const std::string log = folder.readFile("log.xml");
    EXPECT_THAT(log, HasSubstr("\nAuthorization: ~stripped~\n"));
    EXPECT_THAT(log, HasSubstr("\nX-Authorization: ~stripped~"));
    EXPECT_THAT(log, Not(HasSubstr("secret")));
    EXPECT_THAT(log, Not(HasSubstr("dXNlcjpzZWNyZXQ"))); // user:secret in base64
}

TEST(ToolLog, IsRefusedBeforeTheTransferWhenItCannotBeMade) {
    ScriptedServer server; // would note a connection as an error
    TempDir folder;
    EXPECT_EQ(runTool({"get", "--log", folder.file("missing/log"), server.url()}),
              failed("Error creating file '" + nativeName(folder.file("missing/log")) +
                     "': No such file or directory."));
    EXPECT_EQ(runTool({"get", "--log", "-", server.url()}), refused("--log: must name a file"));
    EXPECT_EQ(runTool({"get", "--log", "", server.url()}), refused("--log: must not be empty"));
    EXPECT_THAT(server.finish(), IsEmpty());
}

TEST(ToolLog, DoesNotTakeThePlaceOfTheBody) {
    ScriptedServer server; // would note a connection as an error
    TempDir folder;
    folder.writeFile("old", "content");
    for (const char* name : {"old", "new"})
        EXPECT_EQ(
            runTool({"get", "-o", folder.file(name), "--log", folder.path() + "/./" + name, server.url()}),
            refused("--log: names the same file as --output"));
    EXPECT_EQ(runTool({"put", server.url(), "-f", "x", "-o", folder.file("a"), "--log", folder.file("a")}),
              refused("--log: names the same file as --output"));
    EXPECT_EQ(folder.readFile("old"), "content");
    EXPECT_EQ(runTool({"get", "-o", nullDevice(), "--log", nullDevice(), webServer().url("/hello.txt")}),
              succeeded(""));
    EXPECT_THAT(server.finish(), IsEmpty());
}
