#include "Tool.h"

#include "support/NginxServer.h"
#include "support/ScriptedServer.h"

#include <gmock/gmock.h>

using namespace testsupport;
using namespace tooltest;
using testing::IsEmpty;

TEST(ToolRedirect, IsFollowed) {
    NginxServer& server = webServer();
    for (const char* path : {"/r301", "/r302", "/r303", "/r307", "/r308", "/rabs", "/rrel", "/chain/50"})
        EXPECT_EQ(runTool({"get", server.url(path)}), succeeded(NginxServer::helloContent())) << path;
}

TEST(ToolRedirect, KeepsItsOwnBodyToItself) {
    ScriptedServer server;
    server.play(Script()
                    .expectRequest()
                    .send("HTTP/1.1 302 Found\r\nLocation: /next\r\nContent-Length: 5\r\n\r\nmoved")
                    .expectRequest()
                    .send(okResponse("body")));
    EXPECT_EQ(runTool({"get", server.url()}), succeeded("body"));
    EXPECT_THAT(server.finish(), IsEmpty());
}

TEST(ToolRedirect, LeadsToTheErrorOfItsGoal) {
    ScriptedServer server;
    server.play(Script()
                    .expectRequest()
                    .send("HTTP/1.1 302 Found\r\nLocation: /next\r\nContent-Length: 5\r\n\r\nmoved")
                    .expectRequest()
                    .send("HTTP/1.1 410 Gone\r\nContent-Length: 4\r\n\r\nlost"));
    EXPECT_EQ(runTool({"get", server.url()}), failed(server.url() + ": HTTP/1.1 410 Gone: lost"));
}

TEST(ToolRedirect, EndsAfterFiftyOfThem) {
    NginxServer& server = webServer();
    server.clearAccessLog();
    EXPECT_EQ(runTool({"get", server.url("/loop")}),
              failed(server.url("/loop") + ": Number of redirects hit maximum amount: Maximum (50) redirects "
                                           "followed (response code: http 302)"));
    EXPECT_EQ(server.accessLog().size(), 51U);
}

TEST(ToolRedirect, DoesNotLeaveHTTP) {
    for (const std::string scheme : {"ftp", "file"}) {
        ScriptedServer server;
        server.play(Script().expectRequest().send("HTTP/1.1 302 Found\r\nLocation: " + scheme +
                                                  "://127.0.0.1/etc/passwd\r\nContent-Length: 0\r\n\r\n"));
        EXPECT_EQ(runTool({"get", server.url()}),
                  failed(server.url() + ": Unsupported protocol: Protocol \"" + scheme +
                         "\" not supported or disabled in libcurl (response code: http 302)"));
    }
}

TEST(ToolRedirect, CarriesNoLoginToAnotherServer) {
    ScriptedServer other;
    other.play(Script().expectRequest().send(okResponse("body")));
    ScriptedServer server;
    server.play(Script().expectRequest().send(
        "HTTP/1.1 302 Found\r\nLocation: http://localhost:" + std::to_string(other.port()) +
        "/\r\nContent-Length: 0\r\n\r\n"));
    EXPECT_EQ(runTool({"get", "--user", "u", "--password-file", "-", server.url()}, "p"), succeeded("body"));
    EXPECT_EQ(server.requests().at(0).header("Authorization"), "Basic dTpw");
    EXPECT_EQ(other.requests().at(0).header("Authorization"), std::nullopt);
}
