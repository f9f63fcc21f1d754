#include "Tool.h"

#include "support/ChildProcess.h"
#include "support/NginxServer.h"
#include "support/ScriptedServer.h"
#include "support/TempDir.h"
#include "support/Wait.h"

#include <gmock/gmock.h>

#include <filesystem>
#include <fstream>

using namespace testsupport;
using namespace tooltest;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

constexpr std::chrono::seconds waitLimit{20};

/// The greatest memory that the process has used so far, in bytes.
std::size_t peakMemory(pid_t process) {
    std::ifstream status("/proc/" + std::to_string(process) + "/status");
    for (std::string word; status >> word;) {
        std::size_t kibibytes = 0;
        if (word == "VmHWM:" && status >> kibibytes) return kibibytes * 1024;
    }
    throw std::runtime_error("no VmHWM");
}

bool waitForSize(const std::string& file, std::uintmax_t size) {
    return waitUntil(
        [&] {
            std::error_code error;
            const std::uintmax_t found = std::filesystem::file_size(file, error);
            return !error && found >= size;
        },
        waitLimit);
}

} // namespace

TEST(ToolGet, WritesTheBodyToStandardOutputByteForByte) {
    NginxServer& server = webServer();
    EXPECT_EQ(runTool({"get", server.url("/hello.txt")}), succeeded(NginxServer::helloContent()));
    EXPECT_EQ(runTool({"get", server.url("/big.bin")}), succeeded(NginxServer::bigContent()));
    EXPECT_EQ(runTool({"get", server.url("/empty.txt")}), succeeded(""));
    EXPECT_EQ(runTool({"get", server.url("/s204")}), succeeded(""));
    EXPECT_EQ(runTool({"get", "-o", "-", server.url("/hello.txt")}), succeeded(NginxServer::helloContent()));
}

TEST(ToolGet, TakesTheSchemeInAnyCase) {
    NginxServer& server = webServer();
    std::string url = server.url("/hello.txt");
    url.replace(0, 4, "HTTP");
    EXPECT_EQ(runTool({"get", url}), succeeded(NginxServer::helloContent()));
}

TEST(ToolGet, SendsThisRequest) {
    ScriptedServer server;
    server.play(Script().expectRequest().send(okResponse("done")));
    EXPECT_EQ(runTool({"get", server.url("/path?query=%C3%BC#fragment")}), succeeded("done"));
    const std::string host = "127.0.0.1:" + std::to_string(server.port());
    EXPECT_EQ(server.received(0), "GET /path?query=%C3%BC HTTP/1.1\r\n"
                                  "Host: " +
                                      host +
                                      "\r\n"
                                      "User-Agent: vantra/" VANTRA_TOOL_VERSION "\r\n"
                                      "Accept: */*\r\n"
                                      "\r\n");
    EXPECT_THAT(server.finish(), IsEmpty());
}

TEST(ToolGet, SendsTheHeadersGiven) {
    ScriptedServer server;
    server.play(Script().expectRequest().send(okResponse("done")));
    EXPECT_EQ(
        runTool({"get", "--header", "X-First: 1", "--header", " X-Second :  [a,b]  ", "--header",
                 "Accept:", "--header=User-Agent: me: \xC3\xBC", "--header", "X-First: again", server.url()}),
        succeeded("done"));
    const HttpRequest request = server.requests().at(0);
    EXPECT_THAT(request.headerLines,
                ElementsAre("Host: 127.0.0.1:" + std::to_string(server.port()), "X-First: 1",
                            "X-Second: [a,b]", "User-Agent: me: \xC3\xBC", "X-First: again"));
}

TEST(ToolGet, PassesTheBodyOnWhileItArrives) {
    ScriptedServer server;
    const auto latch = std::make_shared<Latch>();
    server.play(Script()
                    .expectRequest()
                    .send("HTTP/1.1 200 OK\r\nContent-Length: 10\r\n\r\nfirst")
                    .waitFor(latch)
                    .send("later"));
    ChildOptions options;
    options.environment = toolEnvironment();
    ChildProcess tool({toolPath(), "get", server.url()}, options);
    EXPECT_TRUE(waitUntil([&] { return tool.output() == "first"; }, waitLimit)) << tool.output();
    latch->release();
    ASSERT_TRUE(waitUntil([&] { return !tool.isRunning(); }, waitLimit));
    EXPECT_EQ(tool.exitStatus(), 0);
    EXPECT_EQ(tool.output(), "firstlater");
}

TEST(ToolGet, KeepsNoBodyInMemory) {
    constexpr std::size_t firstPart = 1 << 20;
    constexpr std::size_t secondPart = 64 << 20;
    ScriptedServer server;
    const auto afterFirst = std::make_shared<Latch>();
    const auto afterSecond = std::make_shared<Latch>();
    server.play(Script()
                    .expectRequest()
                    .send("HTTP/1.1 200 OK\r\nContent-Length: " + std::to_string(firstPart + secondPart) +
                          "\r\n\r\n" + std::string(firstPart, 'a'))
                    .waitFor(afterFirst)
                    .send(std::string(secondPart - 1, 'b'))
                    .waitFor(afterSecond)
                    .send("c"));
    TempDir folder;
    ChildOptions options;
    options.environment = toolEnvironment();
    options.outputFile = folder.file("output");
    ChildProcess tool({toolPath(), "get", server.url()}, options);

    ASSERT_TRUE(waitForSize(options.outputFile, firstPart));
    const std::size_t peakAtFirst = peakMemory(tool.pid());
    afterFirst->release();
    ASSERT_TRUE(waitForSize(options.outputFile, firstPart + secondPart - 1));
    const std::size_t peakAtSecond = peakMemory(tool.pid());
    afterSecond->release();
    ASSERT_TRUE(waitUntil([&] { return !tool.isRunning(); }, waitLimit));

    EXPECT_EQ(tool.exitStatus(), 0);
    EXPECT_LT(peakAtSecond - peakAtFirst, secondPart / 8);
}

TEST(ToolGet, ReportsWhatTheLibraryLogsAndGoesOn) {
    ScriptedServer server; // whose status line libcurl understands, and the library does not
    server.play(Script().expectRequest().send("HTTP/1.1 200OK\r\nContent-Length: 4\r\n\r\nbody"));
    const Outcome expected{
        0, "body",
        "vantra: error: Error parsing HTTP status line - ignoring (statusLine: 'HTTP/1.1 200OK', "
        "method: '', URL: '" +
            server.url() + "'): Invalid integer: '200OK'.\n"};
    EXPECT_EQ(runTool({"get", server.url()}), expected);
}
