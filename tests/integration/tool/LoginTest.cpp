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
    EXPECT_EQ(runTool({"get", "--user", NginxServer::userName(), "--password-file", "-", url},
                      NginxServer::password()),
              succeeded(NginxServer::helloContent()));
}

TEST(ToolLogin, IsRefusedWhenMissingOrWrong) {
    NginxServer& server = webServer();
    const std::string url = server.url("/basic/hello.txt");
    const Outcome expected = failed(
        url + ": HTTP/1.1 401 Unauthorized: 401 Authorization Required 401 Authorization Required nginx");
    EXPECT_EQ(runTool({"get", url}), expected);
    EXPECT_EQ(runTool({"get", "--user", NginxServer::userName(), "--password-file", "-", url}, "wrong"),
              expected);
}

TEST(ToolLogin, SendsUTF8) {
    EXPECT_EQ(getAuthorization({"--user", "\xC3\xBC", "--password-file", "-"}, "\xE2\x82\xAC:x"),
              "Basic w7w64oKsOng=");
}

TEST(ToolLogin, HasAnEmptyPasswordUnlessOneIsGiven) {
    EXPECT_EQ(getAuthorization({"--user", "u"}), "Basic dTo=");
}

TEST(ToolLogin, TakesTheUserFromTheURLAndNoPassword) {
    ScriptedServer server;
    server.play(Script().expectRequest().send(okResponse("body")));
    const std::string address = "127.0.0.1:" + std::to_string(server.port()) + "/";
    EXPECT_EQ(runTool({"get", "http://%C3%BC@" + address}), succeeded("body"));
    EXPECT_EQ(server.requests().at(0).header("Authorization"), "Basic w7w6");
    const Outcome expected =
        refused("URL: must not hold a password, since others can read the command line; use "
                "--user and --password-file");
    for (const char* login : {"u:secret", ":secret", "u:%00"})
        EXPECT_EQ(runTool({"get", "http://" + std::string(login) + "@" + address}), expected) << login;
}

TEST(ToolLogin, IsNeverTakenFromTheCommandLine) {
    const Outcome expected =
        refused("--password: others can read the command line; put the secret into a file "
                "and name that with --password-file");
    EXPECT_EQ(runTool({"get", "--user", "u", "--password", "secret", "http://127.0.0.1:1/"}), expected);
    EXPECT_EQ(runTool({"ftp", "ls", "ftp://127.0.0.1:1/", "--password=secret"}), expected);
    EXPECT_EQ(runTool({"mail", "test", "--password", "secret"}), expected);
    EXPECT_EQ(
        runTool({"s3", "rm", "s3://bucket/key", "--secret-key", "secret"}),
        refused("--secret-key: others can read the command line; put the secret into a file and name that "
                "with --secret-key-file"));
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
    const std::string name = "'" + nativeName(folder.file("password")) + "'";
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
              failed("Error opening file '" + nativeName(missing) + "': No such file or directory."));
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

TEST(ToolLogin, TakesHeadersFromAFile) {
    TempDir folder;
    ScriptedServer server;
    server.play(Script().expectRequest().send(okResponse("body")));
    const std::string file =
        folder.writeFile("headers", "Authorization: Bearer t\xC3\xB6ken\r\n\nX-Empty:\nCookie: a=b");
    EXPECT_EQ(runTool({"get", "--header", "X-Last: z", "--header-file", file, server.url()}),
              succeeded("body"));
    const HttpRequest request = server.requests().at(0);
    EXPECT_EQ(request.header("Authorization"), "Bearer t\xC3\xB6ken");
    EXPECT_EQ(request.header("Cookie"), "a=b");
    EXPECT_EQ(request.header("X-Last"), "z");
    EXPECT_EQ(request.header("X-Empty"), std::nullopt);
}

TEST(ToolLogin, NeverShowsALineOfAHeaderFile) {
    TempDir folder;
    const auto run = [&](std::string_view content) {
        return runTool({"get", "--header-file", folder.writeFile("headers", content), "http://127.0.0.1:1/"});
    };
    const std::string name = "'" + nativeName(folder.file("headers")) + "'";
    for (const char* content : {"\nsecret", "\n: secret", "\nA: secret\x1B", "\nA: \xFF"})
        EXPECT_EQ(run(content), failed("Line 2 of " + name + " is not a header as in 'Name: value'."));
    EXPECT_EQ(run(std::string(300000, 'a')),
              failed(name + " is larger than 262144 bytes, the most that can be sent."));
    EXPECT_EQ(runTool({"get", "--header-file", "-", "http://127.0.0.1:1/"}),
              refused("--header-file: must name a file"));
}

TEST(ToolLogin, TakesNoHeaderWithASecretFromTheCommandLine) {
    for (const std::string name : {"Authorization", "proxy-authorization", "Cookie"})
        EXPECT_EQ(runTool({"get", "--header", name + ": secret", "http://127.0.0.1:1/"}),
                  refused("--header: others can read the command line; put '" + name +
                          "' into a file and name that with --header-file"));
}
