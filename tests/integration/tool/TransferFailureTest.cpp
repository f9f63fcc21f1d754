#include "Tool.h"

#include "support/MatchesPattern.h"
#include "support/Ports.h"
#include "support/ScriptedServer.h"

#include <gmock/gmock.h>

using namespace testsupport;
using namespace tooltest;

TEST(ToolTransferFailure, NamesAServerThatDoesNotAnswer) {
    RefusedPort port;
    const std::string address = "127.0.0.1:" + std::to_string(port.port());
    const Outcome outcome = runTool({"get", "http://" + address + "/"});
    EXPECT_EQ(outcome.exitStatus, 1);
    EXPECT_EQ(outcome.output, "");
    EXPECT_THAT(outcome.error,
                MatchesPattern("vantra: http://" + address +
                               "/: Couldn't connect to server: Failed to connect to 127.0.0.1 port " +
                               std::to_string(port.port()) +
                               " after [0-9]+ ms: Couldn't connect to server\n"));
}

TEST(ToolTransferFailure, NamesAHostThatDoesNotExist) {
    const std::string host =
        std::string(64, 'x') + ".invalid"; // no resolver asks for a name with so long a part
    EXPECT_EQ(runTool({"get", "http://" + host + "/"}),
              failed("http://" + host + "/: Couldn't resolve host name: Could not resolve host: " + host));
}

TEST(ToolTransferFailure, TellsOfABodyCutShort) {
    ScriptedServer server;
    server.play(Script().expectRequest().send("HTTP/1.1 200 OK\r\nContent-Length: 10\r\n\r\nhalf").close());
    EXPECT_EQ(runTool({"get", server.url()}),
              failedAfter("half", server.url() + ": Transferred a partial file: transfer closed with 6 bytes "
                                                 "remaining to read (response code: http 200)"));
}

TEST(ToolTransferFailure, TellsOfAConnectionReset) {
    ScriptedServer server;
    server.play(Script().expectRequest().send("HTTP/1.1 200 OK\r\nContent-Length: 10\r\n\r\nhalf").reset());
    std::vector<Outcome> expected;
    for (const std::string& message : messagesOfReset(server.url(), 6))
        expected.push_back(failedAfter("half", message));
    EXPECT_THAT(expected, testing::Contains(runTool({"get", server.url()})));
}

TEST(ToolTransferFailure, TellsOfAnEmptyAnswer) {
    ScriptedServer server;
    server.play(Script().expectRequest().close());
    EXPECT_EQ(
        runTool({"get", server.url()}),
        failed(server.url() + ": Server returned nothing (no headers, no data): Empty reply from server"));
}

TEST(ToolTransferFailure, TellsOfAnAnswerThatIsNoHTTP) {
    ScriptedServer server;
    server.play(Script().expectRequest().send("SSH-2.0-OpenSSH_9.2\r\n"));
    EXPECT_EQ(runTool({"get", server.url()}),
              failed(server.url() + ": Unsupported protocol: Received HTTP/0.9 when not allowed"));
}

TEST(ToolTransferFailure, EndsARequestThatTakesTooLong) {
    ScriptedServer server;
    server.play(Script().expectRequest().stall());
    const auto start = std::chrono::steady_clock::now();
    const Outcome outcome = runTool({"get", "--timeout", "0.3", server.url()});
    const auto duration = std::chrono::steady_clock::now() - start;
    EXPECT_EQ(outcome.exitStatus, 1);
    EXPECT_EQ(outcome.output, "");
    EXPECT_THAT(outcome.error, MatchesPattern("vantra: " + server.url() +
                                              ": Timeout was reached: Operation timed out after "
                                              "[0-9]+ milliseconds with 0 bytes received\n"));
    EXPECT_GE(duration, std::chrono::milliseconds(300));
    EXPECT_LT(duration, std::chrono::seconds(10));
}

TEST(ToolTransferFailure, HasTheShortestTimeoutWhenItIsShorterThanLibcurlCanTell) {
    ScriptedServer server;
    server.play(Script().stall());
    const Outcome outcome = runTool({"get", "--timeout", "0.0000001", server.url()});
    EXPECT_EQ(outcome.exitStatus, 1);
    EXPECT_THAT(outcome.error,
                MatchesPattern("vantra: " + server.url() + ": Timeout was reached: .* timed? ?out .*\n"));
}
