#include "Tool.h"

#include "support/ScriptedServer.h"
#include "support/TempDir.h"

#include <gmock/gmock.h>

using namespace testsupport;
using namespace tooltest;
using testing::IsEmpty;

TEST(ToolInclude, WritesTheHeadAsReceivedAheadOfTheBody) {
    const std::string response =
        "HTTP/1.1 201 Made  It\r\nX-Two: a\r\nx-two:b\r\nContent-Length: 4\r\n\r\nbody";
    ScriptedServer server;
    server.play(Script().expectRequest().send(response));
    EXPECT_EQ(runTool({"get", "--include", server.url()}), succeeded(response));
}

TEST(ToolInclude, WritesTheHeadOfAResponseWithoutABody) {
    const std::string response = "HTTP/1.1 204 No Content\r\nX: y\r\n\r\n";
    ScriptedServer server;
    server.play(Script().expectRequest().send(response));
    EXPECT_EQ(runTool({"get", "--include", server.url()}), succeeded(response));
}

TEST(ToolInclude, WritesTheHeadsOfRedirectsAndInterimResponsesToo) {
    const std::string redirect = "HTTP/1.1 302 Found\r\nLocation: /next\r\nContent-Length: 5\r\n\r\n";
    const std::string interim = "HTTP/1.1 103 Early Hints\r\nLink: </style.css>\r\n\r\n";
    const std::string last = "HTTP/1.1 200 OK\r\nContent-Length: 4\r\n\r\nbody";
    ScriptedServer server;
    server.play(Script().expectRequest().send(redirect + "moved").expectRequest().send(interim + last));
    EXPECT_EQ(runTool({"get", "--include", server.url()}), succeeded(redirect + interim + last));
    EXPECT_THAT(server.finish(), IsEmpty());
}

TEST(ToolInclude, LeavesTrailersOut) {
    const std::string head = "HTTP/1.1 200 OK\r\nTransfer-Encoding: chunked\r\nTrailer: X-Sum\r\n\r\n";
    ScriptedServer server;
    server.play(Script().expectRequest().send(head + "0\r\nX-Sum: 1\r\n\r\n"));
    server.play(Script().expectRequest().send(head + "4\r\nbody\r\n0\r\nX-Sum: 1\r\n\r\n"));
    EXPECT_EQ(runTool({"get", "--include", server.url()}), succeeded(head));
    EXPECT_EQ(runTool({"get", "--include", server.url()}), succeeded(head + "body"));
}

TEST(ToolInclude, WritesToTheFileOfTheBody) {
    const std::string response = "HTTP/1.1 200 OK\r\nContent-Length: 4\r\n\r\nbody";
    ScriptedServer server;
    server.play(Script().expectRequest().send(response));
    TempDir folder;
    EXPECT_EQ(runTool({"get", "--include", "-o", folder.file("out"), server.url()}), succeeded(""));
    EXPECT_EQ(folder.readFile("out"), response);
}

TEST(ToolInclude, WritesNothingOfAnErrorResponse) {
    ScriptedServer server;
    server.play(Script().expectRequest().send("HTTP/1.1 404 Not Found\r\nContent-Length: 4\r\n\r\nbody"));
    EXPECT_EQ(runTool({"get", "--include", server.url()}),
              failed(server.url() + ": HTTP/1.1 404 Not Found: body"));
}
