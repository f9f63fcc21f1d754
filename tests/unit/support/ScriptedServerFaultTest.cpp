#include "support/ScriptedServer.h"
#include "support/TcpClient.h"
#include "support/TempDir.h"
#include "support/Wait.h"
#include "unit/support/Curl.h"

#include <chrono>
#include <functional>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <memory>
#include <optional>
#include <string>
#include <system_error>

using namespace testsupport;
using testing::IsEmpty;

namespace {

const std::string truncatedResponse = "HTTP/1.1 200 OK\r\nContent-Length: 100\r\n\r\nhalf";

} // namespace

TEST(ScriptedFault, ResetReachesTheClientAfterAllBytes) {
    ScriptedServer server;
    server.play(Script().expectRequest().send(truncatedResponse).reset());
    const CommandResult result = curl({server.url()});
    EXPECT_EQ(result.exitStatus, 56);
    EXPECT_EQ(result.standardOutput, "half");
    EXPECT_THAT(server.finish(), IsEmpty());
}

TEST(ScriptedFault, ResetIsAReset) {
    ScriptedServer server;
    server.play(Script().expectBytes(1).reset());
    TcpClient client(server.port());
    client.send("a");
    try {
        client.readSome();
        FAIL() << "the connection ended in order";
    } catch (const std::system_error& error) {
        EXPECT_EQ(error.code(), std::errc::connection_reset);
    }
}

TEST(ScriptedFault, CloseCutsABodyShort) {
    ScriptedServer server;
    server.play(Script().expectRequest().send(truncatedResponse).close());
    const CommandResult result = curl({server.url()});
    EXPECT_EQ(result.exitStatus, 18);
    EXPECT_EQ(result.standardOutput, "half");
    EXPECT_THAT(server.finish(), IsEmpty());
}

TEST(ScriptedFault, CloseWithoutAReplyIsInOrder) {
    ScriptedServer server;
    server.play(Script().expectRequest().close());
    EXPECT_EQ(curl({server.url()}).exitStatus, 52);
    EXPECT_THAT(server.finish(), IsEmpty());
}

TEST(ScriptedFault, CloseReadsFirstWhatHasCome) {
    ScriptedServer server;
    const auto latch = std::make_shared<Latch>();
    server.play(Script().expectBytes(1).waitFor(latch).close());
    TcpClient client(server.port());
    client.send("abc");
    ASSERT_TRUE(latch->waitUntilReached());
    latch->release();
    EXPECT_EQ(client.readToEnd(), "");
    EXPECT_THAT(server.finish(), IsEmpty());
    EXPECT_EQ(server.received(0), "abc");
}

TEST(ScriptedFault, GarbageIsSentAsItIs) {
    ScriptedServer server;
    server.play(Script().expectRequest().send("\x01\xff garbage\r\n\r\n").close());
    EXPECT_EQ(curl({server.url()}).exitStatus, 1);
    EXPECT_THAT(server.finish(), IsEmpty());
}

TEST(ScriptedFault, HalfCloseLeavesTheClientSending) {
    ScriptedServer server;
    server.play(Script().send("bye").halfClose());
    TcpClient client(server.port());
    EXPECT_EQ(client.readToEnd(), "bye");
    client.send("and more");
    client.close();
    EXPECT_THAT(server.finish(), IsEmpty());
    EXPECT_TRUE(waitUntil([&] { return server.received(0) == "and more"; }, std::chrono::seconds(10)));
    EXPECT_THAT(server.errors(), IsEmpty());
}

TEST(ScriptedFault, StepsGoOnAfterAHalfClose) {
    ScriptedServer server;
    server.play(Script().halfClose().expectLine("after").stall());
    TcpClient client(server.port());
    EXPECT_EQ(client.readToEnd(), "");
    client.send("after\r\n");
    client.close();
    EXPECT_THAT(server.finish(), IsEmpty());
}

TEST(ScriptedFault, StallLastsUntilTheClientGivesUp) {
    ScriptedServer server;
    server.play(Script().expectRequest().send(truncatedResponse).stall());
    const CommandResult result = curl({"--max-time", "0.3", server.url()});
    EXPECT_EQ(result.exitStatus, 28);
    EXPECT_EQ(result.standardOutput, "half");
    EXPECT_THAT(server.finish(), IsEmpty());
}

TEST(ScriptedFault, StallRecordsWhatComesMeanwhile) {
    ScriptedServer server;
    server.play(Script().expectBytes(1).stall());
    TcpClient client(server.port());
    client.send("a");
    client.send("bc");
    client.close();
    EXPECT_THAT(server.finish(), IsEmpty());
    EXPECT_EQ(server.received(0), "abc");
}

TEST(ScriptedFault, StallEndsWhenReleased) {
    ScriptedServer server;
    const auto latch = std::make_shared<Latch>();
    server.play(Script().stall(latch).expectLine("now").send("released"));
    TcpClient client(server.port());
    ASSERT_TRUE(latch->waitUntilReached());
    EXPECT_FALSE(latch->isReleased());
    latch->release();
    latch->release();
    EXPECT_TRUE(latch->isReleased());
    client.send("now\r\n");
    EXPECT_EQ(client.readBytes(8), "released");
    client.close();
    EXPECT_THAT(server.finish(), IsEmpty());
}

TEST(ScriptedFault, LatchHoldsAnAnswerBack) {
    ScriptedServer server;
    const auto latch = std::make_shared<Latch>();
    server.play(Script().send("first").waitFor(latch).send("second"));
    TcpClient client(server.port());
    EXPECT_EQ(client.readBytes(5), "first");
    ASSERT_TRUE(latch->waitUntilReached());
    latch->release();
    EXPECT_EQ(client.readBytes(6), "second");
}

TEST(ScriptedFault, LatchThatNobodyReachesIsReportedAsSuch) {
    Latch latch;
    EXPECT_FALSE(latch.waitUntilReached(std::chrono::milliseconds(10)));
}

TEST(ScriptedFault, ServerThatDoesNotReadStopsAnUpload) {
    const TempDir folder;
    const std::string file = folder.writeFile("upload", std::string(50'000'000, 'u'));
    ScriptedServer server;
    server.setReceiveBufferSize(4096);
    server.play(Script().expectHead().stallWithoutReading());
    EXPECT_EQ(curl({"--max-time", "0.5", "--upload-file", file, server.url("/upload")}).exitStatus, 28);
    EXPECT_LT(server.received(0).size(), 1'000'000U);
    EXPECT_EQ(server.requests().at(0).startLine, "PUT /upload HTTP/1.1");
}

TEST(ScriptedFault, ServerThatDoesNotReadNoticesTheClientsEnd) {
    ScriptedServer server;
    server.play(Script().expectLine("one").stallWithoutReading());
    TcpClient client(server.port());
    client.send("one\r\n");
    ASSERT_TRUE(server.waitForConnections(1));
    client.close();
    EXPECT_THAT(server.finish(), IsEmpty());
}

/// The destructor has to interrupt whatever a connection waits for. Each case would hang if it did not.
class ScriptedServerEnd : public testing::TestWithParam<std::function<Script(std::shared_ptr<Latch>)>> {};

TEST_P(ScriptedServerEnd, InterruptsAConnection) {
    const auto latch = std::make_shared<Latch>();
    std::optional<ScriptedServer> server(std::in_place);
    server->play(GetParam()(latch));
    TcpClient client(server->port());
    client.send("x");
    ASSERT_TRUE(server->waitForConnections(1));
    server.reset();
    try {
        while (!client.readSome().empty()) {
        }
    } catch (const std::system_error& error) {
        EXPECT_EQ(error.code(), std::errc::connection_reset);
    }
    EXPECT_FALSE(latch->isReleased());
}

INSTANTIATE_TEST_SUITE_P(Waiting, ScriptedServerEnd,
                         testing::Values([](auto) { return Script().expectRequest(); },
                                         [](auto) { return Script().expectBytes(100); },
                                         [](auto) { return Script().send(std::string(50'000'000, 'x')); },
                                         [](auto) { return Script().delay(std::chrono::hours(1)); },
                                         [](auto) {
                                             return Script().sendInChunks("abc", 1, std::chrono::hours(1));
                                         },
                                         [](auto) { return Script().stall(); },
                                         [](auto) { return Script().stallWithoutReading(); },
                                         [](auto latch) { return Script().stall(latch); },
                                         [](auto latch) { return Script().waitFor(latch); },
                                         [](auto) { return Script().expectBytes(1).send("end of script"); }));

TEST(ScriptedServerDestructor, ClosesConnectionsThatHaveJustCome) {
    std::optional<ScriptedServer> server(std::in_place);
    TcpClient client(server->port());
    server.reset();
    try {
        EXPECT_EQ(client.readSome(), "");
    } catch (const std::system_error& error) {
        EXPECT_EQ(error.code(), std::errc::connection_reset);
    }
}
