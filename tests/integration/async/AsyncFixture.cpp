#include "AsyncFixture.h"

#include "support/ResetConnection.h"

using kel::P;
using kel::String;
using vantra::CCURLError;
using vantra::CNetRequest;

void Async::transfer(CNetRequest& request) {
    // The request itself tells of its last transfer until the worker starts the new one.
    kel::CSignal done;
    request.setDoneListener(
        P<CCallingListener>(new CCallingListener([&done](CNetRequest&, const kel::CError*) { done.set(); })));
    thread_->addRequest(&request);
    const bool isDone = done.wait(patienceMs);
    if (!isDone) thread_->stop(true); // the listener must not outlive the signal
    request.setDoneListener(nullptr);
    ASSERT_TRUE(isDone);
}

P<CNetRequest> Async::makeEndless() { return makeRequest(silent_.url()); }

void Async::waitForEndless(std::size_t count) { ASSERT_TRUE(silent_.waitForRequests(count)); }

std::string Mixture::path(std::size_t number) const { return "/echo?number=" + std::to_string(number); }

P<CNetRequest> Mixture::make(std::size_t number) const {
    switch (number % 10) {
    case 3:
        return makeRequest(webServer().url("/s404"));
    case 6:
        return makeRequest("http://127.0.0.1:" + std::to_string(refused_.port()) + "/");
    case 9:
        return makeRequest(resetting_.url());
    default:
        return makeRequest(webServer().url(path(number)));
    }
}

std::string Mixture::expected(std::size_t number) const {
    switch (number % 10) {
    case 3:
        return "error 22 404 missing body\n";
    case 6:
        return "error 7 0 ";
    case 9:
        return "error 56 0 ";
    default:
        return "ok GET " + path(number) +
               " HTTP/1.1\r\nHost: 127.0.0.1:" + std::to_string(webServer().ports().http) +
               "\r\nAccept: */*\r\n\r\n";
    }
}

std::string Mixture::outcome(const CNetRequest& request) {
    try {
        request.checkAsyncResult();
        return "ok " + getBody(request);
    } catch (const CCURLError& error) {
        const bool isReset = error.getCode() == CURLE_GOT_NOTHING && testsupport::resetMayLookLikeAnEnd();
        const kel::int64 code = isReset ? kel::int64{CURLE_RECV_ERROR} : error.getCode();
        return "error " + std::to_string(code) + " " + std::to_string(error.getResponseCode()) + " " +
               error.getServerMessage().toUTF8();
    }
}
