#include "AsyncFixture.h"

#include "support/Latch.h"

#include <kel/Array.h>

#include <chrono>
#include <memory>
#include <string>

using kel::P;
using kel::TArray;
using testsupport::Latch;
using testsupport::okResponse;
using testsupport::ScriptedConnection;
using testsupport::ScriptedServer;
using vantra::CAsyncNetRequestManager;
using vantra::CNetRequest;

namespace {

/// As many transfers as the parameter says, all in flight on one manager at once. Some systems' sets of
/// sockets hold fewer unless they are told otherwise.
class ManyTransfers : public testing::TestWithParam<int> {};

} // namespace

TEST_P(ManyTransfers, InFlightOnOneManagerComplete) {
    const auto count = static_cast<std::size_t>(GetParam());
    const std::string body(1000, 'x');
    const auto allAsked = std::make_shared<Latch>();
    ScriptedServer server;
    for (std::size_t i = 0; i < count; ++i)
        server.play(testsupport::Script().expectRequest().waitFor(allAsked).send(okResponse(body)));

    CAsyncNetRequestManager manager;
    for (std::size_t i = 0; i < count; ++i) {
        const P<CNetRequest> request = new CNetRequest();
        request->setURL(kel::String(server.url()));
        manager.addRequest(request);
    }
    TArray<P<CNetRequest>> finished;
    const auto end = std::chrono::steady_clock::now() + std::chrono::milliseconds(patienceMs);
    while (finished.size() < count && std::chrono::steady_clock::now() < end) {
        manager.handleEvents(&finished);
        if (server.requests().size() == count) allAsked->release();
        if (finished.size() < count) manager.waitForEvents(100);
    }
    ASSERT_EQ(finished.size(), count);
    for (const P<CNetRequest>& request : finished) EXPECT_EQ(Mixture::outcome(*request), "ok " + body);
    EXPECT_EQ(server.connectionCount(), count);
    EXPECT_THAT(server.finish(), testing::IsEmpty());
}

INSTANTIATE_TEST_SUITE_P(Async, ManyTransfers, testing::Values(64, 200));
