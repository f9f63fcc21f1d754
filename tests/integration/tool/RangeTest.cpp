#include "Tool.h"

#include "support/ScriptedServer.h"
#include "support/TempDir.h"

#include <gmock/gmock.h>

using namespace testsupport;
using namespace tooltest;
using testing::ElementsAre;
using testing::IsEmpty;

TEST(ToolRange, FetchesPartsThatMakeTheWhole) {
    NginxServer& server = webServer();
    const std::string url = server.url("/big.bin");
    std::string joined;
    for (const char* range : {"0-0", "1-99999", "100000-"}) {
        const Outcome part = runTool({"get", "--range", range, url});
        EXPECT_EQ(part.exitStatus, 0) << part.error;
        joined += part.output;
    }
    EXPECT_TRUE(joined == NginxServer::bigContent());
    EXPECT_EQ(runTool({"get", "--range", "6-9", server.url("/hello.txt")}), succeeded("from"));
}

TEST(ToolRange, MayEndBehindTheEnd) {
    EXPECT_EQ(runTool({"get", "--range", "11-9999", webServer().url("/hello.txt")}),
              succeeded(NginxServer::helloContent().substr(11)));
}

TEST(ToolRange, BeyondTheEndIsAnError) {
    const std::string url = webServer().url("/hello.txt");
    TempDir folder;
    const Outcome outcome = runTool({"get", "-o", folder.file("out"), "--range", "9999-", url});
    EXPECT_EQ(outcome, failed(url + ": HTTP/1.1 416 Requested Range Not Satisfiable: 416 Requested Range Not "
                                    "Satisfiable 416 Requested Range Not Satisfiable nginx"));
    EXPECT_THAT(filesIn(folder.path()), IsEmpty());
}

TEST(ToolRange, IsAnErrorWhereTheServerSendsSomethingElse) {
    const std::string url = webServer().url("/noranges/hello.txt");
    EXPECT_EQ(runTool({"get", "--range", "6-9", url}),
              failed(url + ": the server does not send the range asked for."));
    EXPECT_EQ(runTool({"get", "--range", "0-", url}), succeeded(NginxServer::helloContent()));

    for (const char* header : {"", "Content-Range: bytes 5-8/26\r\n", "Content-Range: nonsense\r\n"}) {
        ScriptedServer server;
        server.play(Script().expectRequest().send("HTTP/1.1 206 Partial Content\r\nContent-Length: 4\r\n" +
                                                  std::string(header) + "\r\nfrom"));
        EXPECT_EQ(runTool({"get", "--range", "6-9", server.url()}),
                  failed(server.url() + ": the server does not send the range asked for."));
    }
}

TEST(ToolRange, IsRefusedWhenItIsNone) {
    EXPECT_EQ(runTool({"get", "--range", "9-8", "http://127.0.0.1:1/"}),
              refused("--range: '9-8' is not a range of bytes such as 0-99 or 100-"));
}
