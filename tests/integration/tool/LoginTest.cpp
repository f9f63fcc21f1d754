#include "Tool.h"

#include "support/NginxServer.h"
#include "support/ScriptedServer.h"
#include "support/TempDir.h"

#include <gmock/gmock.h>

using namespace testsupport;
using namespace tooltest;

namespace {

/// The "Authorization" header that the tool sends with these arguments.
std::optional<std::string> getAuthorization(std::vector<std::string> arguments,
                                            std::string_view standardInput = {}) {
    ScriptedServer server;
    server.play(Script().expectRequest().send(okResponse("")));
    arguments.insert(arguments.begin(), "get");
    arguments.push_back(server.url());
    EXPECT_EQ(runTool(arguments, standardInput), succeeded(""));
    return server.requests().at(0).header("Authorization");
}

} // namespace

TEST(ToolLogin, OpensAProtectedFile) {
    NginxServer& server = webServer();
    const std::string url = server.url("/basic/hello.txt");
    EXPECT_EQ(runTool({"get", "--user", NginxServer::userName(), "--password", NginxServer::password(), url}),
              succeeded(NginxServer::helloContent()));
    std::string withLogin = url;
    withLogin.insert(std::string("http://").size(),
                     NginxServer::userName() + ":" + NginxServer::password() + "@");
    EXPECT_EQ(runTool({"get", withLogin}), succeeded(NginxServer::helloContent()));
}

TEST(ToolLogin, IsRefusedWhenMissingOrWrong) {
    NginxServer& server = webServer();
    const std::string url = server.url("/basic/hello.txt");
    const Outcome expected = failed(
        url + ": HTTP/1.1 401 Unauthorized: 401 Authorization Required 401 Authorization Required nginx");
    EXPECT_EQ(runTool({"get", url}), expected);
    EXPECT_EQ(runTool({"get", "--user", NginxServer::userName(), "--password", "wrong", url}), expected);
}

TEST(ToolLogin, SendsUTF8) {
    EXPECT_EQ(getAuthorization({"--user", "\xC3\xBC", "--password", "\xE2\x82\xAC:x"}), "Basic w7w64oKsOng=");
}

TEST(ToolLogin, HasAnEmptyPasswordUnlessOneIsGiven) {
    EXPECT_EQ(getAuthorization({"--user", "u"}), "Basic dTo=");
    EXPECT_EQ(getAuthorization({"--user", "u", "--password", ""}), "Basic dTo=");
}

TEST(ToolLogin, TakesThePasswordFromAFile) {
    TempDir folder;
    const auto fromFile = [&](std::string_view content) {
        return getAuthorization({"--user", "u", "--password-file", folder.writeFile("password", content)});
    };
    EXPECT_EQ(fromFile("p"), "Basic dTpw");
    EXPECT_EQ(fromFile("p\n"), "Basic dTpw");
    EXPECT_EQ(fromFile("p\r\n"), "Basic dTpw");
    EXPECT_EQ(fromFile(" p "), "Basic dTogcCA=");
    EXPECT_EQ(fromFile(""), "Basic dTo=");
}

TEST(ToolLogin, TakesThePasswordFromStandardInput) {
    EXPECT_EQ(getAuthorization({"--user", "u", "--password-file", "-"}, "p\n"), "Basic dTpw");
}

TEST(ToolLogin, RefusesAPasswordFileThatHoldsNone) {
    TempDir folder;
    const auto run = [&](std::string_view content) {
        return runTool({"get", "--user", "u", "--password-file", folder.writeFile("password", content),
                        "http://127.0.0.1:1/"});
    };
    const std::string name = "'" + folder.file("password") + "'";
    EXPECT_EQ(run("p\nq\n"),
              failed("The password in " + name + " contains line breaks or other control characters."));
    EXPECT_EQ(run(std::string_view("p\0q", 3)),
              failed("The password in " + name + " contains line breaks or other control characters."));
    EXPECT_EQ(run("\xFF"), failed("The password in " + name + " is not valid UTF-8."));
    EXPECT_EQ(run(std::string(4097, 'p')), failed("The password in " + name + " is longer than 4096 bytes."));
    EXPECT_EQ(run(std::string(1 << 20, 'p')),
              failed("The password in " + name + " is longer than 4096 bytes."));
    EXPECT_EQ(runTool({"get", "--user", "u", "--password-file", "-", "http://127.0.0.1:1/"}, "p\nq"),
              failed("The password in standard input contains line breaks or other control characters."));
}

TEST(ToolLogin, NamesAPasswordFileThatCannotBeRead) {
    TempDir folder;
    const std::string missing = folder.file("missing");
    EXPECT_EQ(runTool({"get", "--user", "u", "--password-file", missing, "http://127.0.0.1:1/"}),
              failed("Error opening file '" + missing + "': No such file or directory."));
    EXPECT_EQ(runScript("\"$TOOL\" get --user u --password-file - http://127.0.0.1:1/ <&-", {}),
              failed("Error reading standard input: Bad file descriptor."));
}

TEST(ToolLogin, TakesALongPassword) {
    TempDir folder;
    const std::string password(4096, 'p');
    ScriptedServer server;
    server.play(Script().expectRequest().send(okResponse("body")));
    EXPECT_EQ(runTool({"get", "--user", "u", "--password-file", folder.writeFile("password", password + "\n"),
                       server.url()}),
              succeeded("body"));
}
