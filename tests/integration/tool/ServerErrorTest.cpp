#include "Tool.h"

#include "support/NginxServer.h"
#include "support/ScriptedServer.h"
#include "support/TempDir.h"

#include <gmock/gmock.h>

using namespace testsupport;
using namespace tooltest;
using testing::IsEmpty;

namespace {

constexpr const char* replacement = "\xEF\xBF\xBD";

std::string errorResponse(const std::string& statusLine, const std::string& moreHeaders,
                          const std::string& body) {
    return statusLine + "\r\n" + moreHeaders + "Content-Length: " + std::to_string(body.size()) + "\r\n\r\n" +
           body;
}

/// What the tool says about such a response, without the URL.
Outcome getError(const std::string& response, std::string& url) {
    ScriptedServer server;
    server.play(Script().expectRequest().send(response));
    url = server.url("/x");
    return runTool({"get", url});
}

void expectMessage(const std::string& response, const std::string& message) {
    std::string url;
    const Outcome outcome = getError(response, url);
    EXPECT_EQ(outcome, failed(url + ": " + message));
}

} // namespace

TEST(ToolServerError, TellsTheStatusLineAndThePlainTextOfTheServer) {
    NginxServer& server = webServer();
    EXPECT_EQ(
        runTool({"get", server.url("/nothing/here")}),
        failed(server.url("/nothing/here") + ": HTTP/1.1 404 Not Found: 404 Not Found 404 Not Found nginx"));
    expectMessage(
        errorResponse("HTTP/1.1 503 Try Later", "Content-Type: text/plain\r\n", "Too much to do.\n"),
        "HTTP/1.1 503 Try Later: Too much to do.");
}

TEST(ToolServerError, TellsTheTextOfAnHTMLPage) {
    expectMessage(
        errorResponse("HTTP/1.1 404 Not Found", "Content-Type: text/html; charset=utf-8\r\n",
                      "<html><body>\r\n<h1>The page you want\tis <b>not</b></h1>\n<p>h\xC3\xA9re.</p>"
                      "</body></html>"),
        "HTTP/1.1 404 Not Found: The page you want is not h\xC3\xA9re.");
}

TEST(ToolServerError, TellsTheStatusLineAloneWhenThereIsNoText) {
    expectMessage(errorResponse("HTTP/1.1 500 Internal Server Error", "", ""),
                  "HTTP/1.1 500 Internal Server Error");
    expectMessage(errorResponse("HTTP/1.1 500 Internal Server Error", "", " \r\n\t"),
                  "HTTP/1.1 500 Internal Server Error");
    expectMessage(errorResponse("HTTP/1.1 500 Internal Server Error", "", "\xFF\xFE binary"),
                  "HTTP/1.1 500 Internal Server Error");
    expectMessage("HTTP/1.1 500\r\nContent-Length: 0\r\n\r\n", "HTTP/1.1 500");
}

TEST(ToolServerError, CountsEveryStatusOutsideTheTwoHundreds) {
    expectMessage("HTTP/1.1 304 Not Modified\r\n\r\n", "HTTP/1.1 304 Not Modified");
    expectMessage(errorResponse("HTTP/1.1 300 Multiple Choices", "", "choose"),
                  "HTTP/1.1 300 Multiple Choices: choose");
    expectMessage(errorResponse("HTTP/1.1 600 What", "", "odd"), "HTTP/1.1 600 What: odd");
}

TEST(ToolServerError, DisarmsTextThatWouldControlTheTerminal) {
    const std::string r = replacement;
    expectMessage(errorResponse("HTTP/1.1 400 Bad\x1b]0;title\x07", "",
                                "clear\x1b[2J\r\n\r\nnext\tline\b\x7F csi\xC2\x9B"
                                "31m nel\xC2\x85ls\xE2\x80\xA8"
                                "rtl\xE2\x80\xAEtxt\xE2\x81\xA6 \xE2\x82\xAC  two blanks"),
                  "HTTP/1.1 400 Bad" + r + "]0;title" + r + ": clear" + r + "[2J next line" + r + r + " csi" +
                      r + "31m nel ls rtl" + r + "txt" + r + " \xE2\x82\xAC  two blanks");
}

TEST(ToolServerError, CutsALongText) {
    expectMessage(errorResponse("HTTP/1.1 400 Bad Request", "", std::string(5000, 'x')),
                  "HTTP/1.1 400 Bad Request: " + std::string(1000, 'x') + "...");
    expectMessage(errorResponse("HTTP/1.1 400 Bad Request", "", std::string(1000, 'x')),
                  "HTTP/1.1 400 Bad Request: " + std::string(1000, 'x'));
}

TEST(ToolServerError, EndsATransferWhoseErrorTextDoesNotEnd) {
    ScriptedServer server;
    server.play(Script()
                    .expectRequest()
                    .send("HTTP/1.1 403 Forbidden\r\n\r\nno " + std::string(100000, 'x'))
                    .stall());
    EXPECT_EQ(runTool({"get", server.url()}),
              failed(server.url() + ": HTTP/1.1 403 Forbidden: no " + std::string(997, 'x') + "..."));
    EXPECT_THAT(server.finish(), IsEmpty());
}

TEST(ToolServerError, TellsTheStatusEvenIfTheConnectionBreaksInItsText) {
    ScriptedServer server;
    server.play(Script()
                    .expectRequest()
                    .send("HTTP/1.1 403 Forbidden\r\nContent-Length: 100\r\n\r\nno entry")
                    .reset());
    EXPECT_EQ(runTool({"get", server.url()}), failed(server.url() + ": HTTP/1.1 403 Forbidden: no entry"));
}

TEST(ToolServerError, NeverShowsTheUserOfTheURL) {
    ScriptedServer server;
    server.play(Script().expectRequest().send("HTTP/1.1 404 Not Found\r\nContent-Length: 0\r\n\r\n"));
    const std::string address = "127.0.0.1:" + std::to_string(server.port()) + "/x";
    EXPECT_EQ(runTool({"get", "http://user@" + address}),
              failed("http://" + address + ": HTTP/1.1 404 Not Found"));
}

TEST(ToolServerError, LeavesNoFileAndKeepsAnExistingOne) {
    NginxServer& server = webServer();
    TempDir folder;
    const std::string message = server.url("/s400") + ": HTTP/1.1 400 Bad Request: ";
    const Outcome outcome = runTool({"get", "-o", folder.file("new"), server.url("/s400")});
    EXPECT_EQ(outcome.exitStatus, 1);
    EXPECT_EQ(outcome.error.substr(0, 8 + message.size()), "vantra: " + message);
    EXPECT_THAT(filesIn(folder.path()), IsEmpty());

    folder.writeFile("old", "old content");
    EXPECT_EQ(runTool({"get", "-o", folder.file("old"), server.url("/s400")}), outcome);
    EXPECT_EQ(folder.readFile("old"), "old content");
    EXPECT_THAT(filesIn(folder.path()), testing::ElementsAre("old"));
}
