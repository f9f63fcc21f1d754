#include "AsyncFixture.h"

using kel::P;
using testsupport::NginxServer;
using vantra::CNetRequest;

namespace {

/// Refuses what it is given.
class CThrowingSink : public kel::CBase, public CNetRequest::IDataSink {
public:
    void write(const void*, unsigned int, int, const kel::TMap<kel::String, kel::String>&) override {
        throw kel::CError("no room for the body", "sink", 28);
    }
};

TEST_F(Async, DeliversALargeBody) {
    const P<CNetRequest> request = makeRequest(webServer().httpsUrl("/big.bin"));
    transfer(*request);
    EXPECT_TRUE(Mixture::outcome(*request) == "ok " + NginxServer::bigContent());
}

TEST_F(Async, RaisesTheErrorOfASinkThatThrows) {
    const P<CNetRequest> request = makeRequest(webServer().url("/hello.txt"));
    request->setReceiveDataSink(P<CThrowingSink>(new CThrowingSink()));
    transfer(*request);
    for (int i = 0; i < 2; ++i) {
        try {
            request->checkAsyncResult();
            ADD_FAILURE() << "nothing was thrown";
        } catch (const kel::CError& error) {
            EXPECT_EQ(error.getMessage(), "no room for the body");
            EXPECT_EQ(error.getCodeDomain(), "sink");
            EXPECT_EQ(error.getCode(), 28);
        }
    }
    request->setDefaultReceiveDataStream();
    transfer(*request);
    EXPECT_EQ(Mixture::outcome(*request), "ok " + NginxServer::helloContent());
}

TEST_F(Async, LetsAListenerAddItsRequestAThousandTimes) {
    constexpr int times = 1000;
    int ends = 0;
    int wrong = 0;
    kel::CSignal allDone;
    const P<CNetRequest> request = makeRequest(webServer().url("/hello.txt"));
    const P<CCallingListener> listener =
        new CCallingListener([&](CNetRequest& done, const kel::CError* error) {
            if (error || getBody(done) != NginxServer::helloContent()) ++wrong;
            if (++ends > times) {
                allDone.set();
            } else {
                thread_->addRequest(&done);
            }
        });
    request->setDoneListener(listener);
    thread_->addRequest(request);
    ASSERT_TRUE(allDone.wait(2 * patienceMs));
    EXPECT_EQ(ends, times + 1);
    EXPECT_EQ(wrong, 0);
    EXPECT_TRUE(request->isAsyncDone());
}

} // namespace
