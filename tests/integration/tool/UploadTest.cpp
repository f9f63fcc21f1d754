#include "Tool.h"

#include "support/ScriptedServer.h"
#include "support/TempDir.h"

#include <gmock/gmock.h>

#include <fstream>

using namespace testsupport;
using namespace tooltest;
using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

namespace {

constexpr const char* someURL = "http://127.0.0.1:1/";

std::vector<std::string> contentTypes(const HttpRequest& request) { return request.headers("Content-Type"); }

} // namespace

TEST(ToolUpload, PutsAFileByteForByte) {
    NginxServer& server = webServer();
    TempDir folder;
    folder.writeFile("big", NginxServer::bigContent());
    folder.writeFile("empty", "");
    EXPECT_EQ(runTool({"put", server.url("/put/tool-big"), "-f", folder.file("big")}), succeeded(""));
    EXPECT_EQ(runTool({"put", "--file", folder.file("empty"), server.url("/put/tool-empty")}), succeeded(""));
    EXPECT_TRUE(server.fileContent("put/tool-big") == NginxServer::bigContent());
    EXPECT_EQ(server.fileContent("put/tool-empty"), "");
}

TEST(ToolUpload, PutsStandardInput) {
    NginxServer& server = webServer();
    EXPECT_EQ(runTool({"put", server.url("/put/tool-input"), "-f", "-"}, NginxServer::bigContent()),
              succeeded(""));
    EXPECT_TRUE(server.fileContent("put/tool-input") == NginxServer::bigContent());
    EXPECT_EQ(runTool({"put", server.url("/put/tool-nothing"), "-f", "-"}), succeeded(""));
    EXPECT_EQ(server.fileContent("put/tool-nothing"), "");
}

TEST(ToolUpload, PostsAFileAndWritesTheAnswer) {
    ScriptedServer server;
    server.play(Script().expectRequest().send(okResponse("thanks")));
    TempDir folder;
    EXPECT_EQ(runTool({"post", server.url("/form"), "-f", folder.writeFile("body", "content")}),
              succeeded("thanks"));
    const std::string host = "127.0.0.1:" + std::to_string(server.port());
    EXPECT_EQ(server.received(0), "POST /form HTTP/1.1\r\n"
                                  "Host: " +
                                      host +
                                      "\r\n"
                                      "User-Agent: vantra/" VANTRA_TOOL_VERSION "\r\n"
                                      "Accept: */*\r\n"
                                      "Content-Type: application/octet-stream\r\n"
                                      "Content-Length: 7\r\n"
                                      "\r\n"
                                      "content");
    EXPECT_THAT(server.finish(), IsEmpty());
}

TEST(ToolUpload, PostsStandardInputInChunks) {
    const Outcome outcome = runTool({"post", webServer().url("/echo"), "-f", "-"}, "from standard input");
    EXPECT_EQ(outcome.exitStatus, 0) << outcome.error;
    EXPECT_THAT(outcome.output, HasSubstr("POST /echo HTTP/1.1\r\n"));
    EXPECT_THAT(outcome.output, HasSubstr("Transfer-Encoding: chunked\r\n"));
    EXPECT_TRUE(outcome.output.ends_with("from standard input"));
}

TEST(ToolUpload, SendsTheContentTypeGiven) {
    TempDir folder;
    const std::string body = folder.writeFile("body", "{}");
    ScriptedServer server;
    for (const char* verb : {"put", "post"}) {
        for (int i = 0; i < 4; ++i) server.play(Script().expectRequest().send(okResponse("")));
        EXPECT_EQ(runTool({verb, server.url(), "-f", body, "--content-type", "application/json"}),
                  succeeded(""));
        EXPECT_THAT(contentTypes(server.requests().back()), ElementsAre("application/json"));
        EXPECT_EQ(runTool({verb, server.url(), "-f", body}), succeeded(""));
        EXPECT_THAT(contentTypes(server.requests().back()), ElementsAre("application/octet-stream"));
        EXPECT_EQ(runTool({verb, server.url(), "-f", body, "--header", "content-type: text/x"}),
                  succeeded(""));
        EXPECT_THAT(contentTypes(server.requests().back()), ElementsAre("text/x"));
        EXPECT_EQ(runTool({verb, server.url(), "-f", body, "--header", "Content-Type:"}), succeeded(""));
        EXPECT_THAT(contentTypes(server.requests().back()), IsEmpty());
    }
    EXPECT_THAT(server.finish(), IsEmpty());
}

TEST(ToolUpload, SendsTheFileAgainAfterARedirect) {
    TempDir folder;
    const std::string body = folder.writeFile("body", NginxServer::bigContent());
    NginxServer& server = webServer();
    EXPECT_EQ(runTool({"put", server.url("/r307/put/tool-redirected"), "-f", body}), succeeded(""));
    EXPECT_TRUE(server.fileContent("put/tool-redirected") == NginxServer::bigContent());

    const Outcome outcome =
        runTool({"post", server.url("/r307/echo"), "-f", folder.writeFile("small", "again")});
    EXPECT_EQ(outcome.exitStatus, 0) << outcome.error;
    EXPECT_TRUE(outcome.output.ends_with("\r\n\r\nagain")) << outcome.output;
}

TEST(ToolUpload, CannotSendStandardInputAgain) {
    ScriptedServer server;
    server.play(Script().expectRequest().send(
        "HTTP/1.1 307 Temporary Redirect\r\nLocation: /there\r\nContent-Length: 0\r\n\r\n"));
    server.play(Script().stall());
    EXPECT_EQ(runTool({"post", server.url(), "-f", "-"}, "once"),
              failed("Standard input cannot be sent a second time."));
}

TEST(ToolUpload, LogsInWithABody) {
    NginxServer& server = webServer();
    TempDir folder;
    EXPECT_EQ(runTool({"put", server.url("/putauth/tool-login"), "-f", folder.writeFile("body", "mine"),
                       "--user", "user", "--password-file", "-"},
                      "secret\n"),
              succeeded(""));
    EXPECT_EQ(server.fileContent("putauth/tool-login"), "mine");
}

TEST(ToolUpload, TellsOfARefusal) {
    TempDir folder;
    const std::string url = webServer().url("/putauth/no");
    const Outcome outcome =
        runTool({"put", url, "-f", folder.writeFile("body", "x"), "-o", folder.file("answer")});
    EXPECT_EQ(outcome.exitStatus, 1);
    EXPECT_EQ(outcome.output, "");
    EXPECT_TRUE(outcome.error.starts_with("vantra: " + url + ": HTTP/1.1 401 Unauthorized")) << outcome.error;
    EXPECT_THAT(filesIn(folder.path()), ElementsAre("body"));
}

TEST(ToolUpload, LogsSizesOfWhatItPuts) {
    NginxServer& server = webServer();
    TempDir folder;
    EXPECT_EQ(runTool({"put", server.url("/put/tool-logged"), "-f", folder.writeFile("body", "private"),
                       "--log", folder.file("log")}),
              succeeded(""));
    const std::string log = folder.readFile("log");
    EXPECT_THAT(log,
                HasSubstr("<NetRequest httpMethod=\"PUT\" url=\"" + server.url("/put/tool-logged") + "\">"));
    EXPECT_THAT(log, HasSubstr(" bytes=\"7\">~stripped~</send>"));
    EXPECT_THAT(log, testing::Not(HasSubstr("private")));
}

TEST(ToolUpload, RefusesArgumentsThatDoNotFitTogether) {
    EXPECT_EQ(runTool({"put", someURL}), refused("--file is required"));
    EXPECT_EQ(runTool({"post", "-f", "x"}), refused("URL is required"));
    EXPECT_EQ(runTool({"put", someURL, "-f", ""}), refused("--file: must not be empty"));
    EXPECT_EQ(runTool({"put", someURL, "-f", "folder/"}),
              refused("--file: 'folder/' names a folder, not a file"));
    EXPECT_EQ(runTool({"put", someURL, "-f", "x", "--content-type", " "}),
              refused("--content-type: must not be empty"));
    EXPECT_EQ(runTool({"put", someURL, "-f", "x", "--content-type", "a\r\nb: c"}),
              refused("--content-type: must not contain line breaks or other control characters"));
    EXPECT_EQ(runTool({"put", someURL, "-f", "x", "--content-type", "a/b", "--header", "Content-type: c/d"}),
              refused("--content-type: a --header holds a Content-Type already"));
    EXPECT_EQ(runTool({"put", "ftp://127.0.0.1:1/f", "-f", "x", "--content-type", "a/b"}),
              refused("--content-type: needs an http or https URL"));
    EXPECT_EQ(runTool({"post", "ftp://127.0.0.1:1/f", "-f", "x"}),
              refused("URL: post needs an http or https URL"));
    EXPECT_EQ(runTool({"put", "ftp://127.0.0.1:1/f", "-f", "x", "--include"}),
              refused("--include: needs an http or https URL"));
    EXPECT_EQ(runTool({"put", someURL, "-f", "-", "--user", "u", "--password-file", "-"}),
              refused("--file: standard input holds the password already"));
}
