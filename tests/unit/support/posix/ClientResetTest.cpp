#include "support/ScriptedServer.h"
#include "support/TcpClient.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <memory>

using namespace testsupport;
using testing::ElementsAre;

TEST(ScriptedServerErrors, ShowAClientThatResets) {
    ScriptedServer server;
    const auto latch = std::make_shared<Latch>();
    server.play(Script().expectBytes(1).waitFor(latch).expectBytes(1));
    TcpClient client(server.port());
    client.send("a");
    ASSERT_TRUE(latch->waitUntilReached());
    client.reset();
    latch->release();
    EXPECT_THAT(server.finish(),
                ElementsAre("connection 0, step 3 of 3 (expect 1 byte): the client reset the connection"));
}
