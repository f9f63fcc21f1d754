#include "Doubles.h"
#include "Thrown.h"

#include "vantra/NetRequest.h"

#include "support/ScriptedServer.h"
#include "support/Threads.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <thread>

namespace vantra::test {

namespace {

using kel::P;
using kel::String;
using testing::Each;
using testing::IsEmpty;
using testsupport::HttpRequest;
using testsupport::okResponse;
using testsupport::ScriptedConnection;
using testsupport::ScriptedServer;
using testsupport::threadCount;

constexpr int roundCount = 20;

/// What a function answered on each of eight threads.
std::vector<std::string> getAnswers(const std::function<std::string(int)>& function) {
    std::vector<std::string> answers(threadCount);
    testsupport::runOnThreads(
        [&](int thread) { answers[static_cast<std::size_t>(thread)] = function(thread); });
    return answers;
}

/// Answers each request with its target and body; a target with "missing" in it is not found.
void echo(ScriptedConnection& connection) {
    while (const std::optional<HttpRequest> request = connection.readHead()) {
        if (request->header("Expect")) connection.send("HTTP/1.1 100 Continue\r\n\r\n");
        const std::string answer = request->target() + " " + connection.readBody();
        if (request->target().find("missing") == std::string::npos) {
            connection.send(okResponse(answer, "Server: echo/1\r\n"));
        } else {
            connection.send("HTTP/1.1 404 Not Found\r\nContent-Length: " + std::to_string(answer.size()) +
                            "\r\n\r\n" + answer);
        }
    }
}

// First, so that the eight threads bring the library up.
TEST(ARequestOnEachOfEightThreads, BringsTheLibraryUpTogether) {
    const std::vector<std::string> answers = getAnswers([](int) -> std::string {
        const P<CNetRequest> request = new CNetRequest();
        return request->getHandle() ? "made" : "no handle";
    });
    EXPECT_THAT(answers, Each("made"));
}

TEST(ARequestOnEachOfEightThreads, GetsItsOwnAnswers) {
    ScriptedServer server{&echo};
    const P<CServerInfo> info = new CServerInfo();
    const std::vector<std::string> answers = getAnswers([&](int thread) -> std::string {
        const P<CNetRequest> request = new CNetRequest();
        for (int round = 0; round < roundCount; ++round) {
            const std::string target = "/" + std::to_string(thread) + "/" + std::to_string(round);
            const std::string body =
                std::string(static_cast<std::size_t>(round), 'x') + std::to_string(thread);
            request->reset();
            request->setServerInfoToUpdate(info);
            request->setVerbose(thread % 2 == 0);
            request->setURL(String(server.url(target)));
            request->setHTTPMethod("PUT");
            request->setSendDataAsUTF8(String(body));
            const Thrown thrown = thrownBy([&] { request->perform(); });
            if (thrown != nothingThrown) return thrown.message;
            if (getBody(*request) != target + " " + body) return getBody(*request);
        }
        return "all right";
    });
    EXPECT_THAT(answers, Each("all right"));
    EXPECT_EQ(info->getServerHeader(), "echo/1");
    EXPECT_THAT(server.errors(), IsEmpty());
}

TEST(ARequestOnEachOfEightThreads, GetsItsOwnFailures) {
    ScriptedServer server{&echo};
    const LogCapture log;
    const std::vector<std::string> answers = getAnswers([&](int thread) -> std::string {
        const P<CNetRequest> request = new CNetRequest();
        for (int round = 0; round < roundCount; ++round) {
            const std::string target = "/missing/" + std::to_string(thread) + "/" + std::to_string(round);
            request->setURL(String(server.url(target)));
            const Thrown expected = curlError(CURLE_HTTP_RETURNED_ERROR, "",
                                              {{"responseCodeDomain", "http"},
                                               {"responseCode", "404"},
                                               {"serverMessage", target + " "},
                                               {"httpStatusLine", "HTTP/1.1 404 Not Found"},
                                               {"url", server.url(target)}});
            if (const Thrown thrown = thrownBy([&] { request->perform(); }); thrown != expected)
                return thrown.message;
        }
        return "all right";
    });
    EXPECT_THAT(answers, Each("all right"));
    EXPECT_THAT(log.getEntries(), IsEmpty());
}

TEST(ARequestOnEachOfEightThreads, ThrowsWhatItsOwnSinkThrew) {
    ScriptedServer server{&echo};
    const std::vector<std::string> answers = getAnswers([&](int thread) -> std::string {
        const P<CNetRequest> request = new CNetRequest();
        const std::string text = "sink " + std::to_string(thread);
        for (int round = 0; round < roundCount; ++round) {
            const P<CRecordingSink> sink = new CRecordingSink();
            sink->writes.failAt(1, [&text] { throw COwnError(String(text), ""); });
            request->setReceiveDataSink(sink);
            request->setURL(String(server.url()));
            if (const Thrown thrown = thrownBy([&] { request->perform(); }); thrown.message != text) {
                return thrown.message;
            }
        }
        return "all right";
    });
    EXPECT_THAT(answers, Each("all right"));
}

TEST(AnAsynchronousOutcome, IsSeenAsAWholeByThreadsThatWaitForIt) {
    const P<CTestRequest> request = new CTestRequest();
    request->setURL("http://127.0.0.1/");
    for (int round = 0; round < roundCount; ++round) {
        // libcurl knows of no response, so the status 0 makes each outcome a failure.
        request->setAsyncInfo(false, CURLE_OK);
        std::thread worker([&] { request->setAsyncInfo(true, CURLE_OK); });
        const std::vector<std::string> answers = getAnswers([&](int thread) -> std::string {
            if (thread % 2 == 0) {
                while (!request->isAsyncDone()) std::this_thread::yield();
            } else if (!request->waitAsyncDone(-1)) {
                return "not done";
            }
            return std::to_string(thrownBy([&] { request->checkAsyncResult(); }).code);
        });
        worker.join();
        EXPECT_THAT(answers, Each("22"));
    }
}

TEST(AnAsynchronousOutcome, OfSMTPGivesItsReplyToAllThreads) {
    const P<CTestRequest> request = new CTestRequest();
    request->setURL("smtp://127.0.0.1/");
    request->setAsyncInfo(false, CURLE_OK);
    request->setAsyncInfo(true, CURLE_SEND_ERROR);
    const Thrown expected =
        curlError(CURLE_SEND_ERROR, "", {{"responseCodeDomain", "smtp"}, {"url", "smtp://127.0.0.1/"}});
    const std::vector<std::string> answers = getAnswers([&](int) -> std::string {
        const Thrown thrown = thrownBy([&] { request->checkAsyncResult(); });
        return thrown == expected ? "all right" : thrown.message;
    });
    EXPECT_THAT(answers, Each("all right"));
}

TEST(AnAsynchronousOutcome, IsNothingOrTheFailureForThreadsThatDoNotWait) {
    const P<CTestRequest> request = new CTestRequest();
    request->setURL("http://127.0.0.1/");
    for (int round = 0; round < roundCount; ++round) {
        request->setAsyncInfo(false, CURLE_OK);
        std::thread worker([&] { request->setAsyncInfo(true, CURLE_COULDNT_CONNECT); });
        const std::vector<std::string> answers = getAnswers([&](int) -> std::string {
            return std::to_string(thrownBy([&] { request->checkAsyncResult(); }).code);
        });
        worker.join();
        EXPECT_THAT(answers, Each(testing::AnyOf("-1", "7")));
    }
}

TEST(TheDoneSignals, OfSeveralRequestsCanBeWaitedForByOneThread) {
    std::vector<P<CTestRequest>> requests;
    for (int i = 0; i < threadCount; ++i) {
        requests.emplace_back(new CTestRequest());
        requests.back()->setAsyncInfo(false, CURLE_OK);
    }
    std::thread waiter([&] {
        for (const P<CTestRequest>& request : requests) EXPECT_TRUE(request->getAsyncDoneSignal()->wait(-1));
    });
    getAnswers([&](int thread) -> std::string {
        requests[static_cast<std::size_t>(thread)]->setAsyncInfo(true, CURLE_OK);
        return "";
    });
    waiter.join();
}

} // namespace

} // namespace vantra::test
