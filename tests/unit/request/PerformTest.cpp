#include "CurlRecorder.h"
#include "Doubles.h"
#include "Thrown.h"

#include "vantra/NetRequest.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <functional>

namespace vantra::test {

namespace {

using kel::P;
using kel::String;
using testing::ElementsAre;
using testing::IsEmpty;

const std::string url = "http://example.org/path";

class Perform : public testing::Test {
protected:
    Perform() { request_->setURL(String(url)); }

    /// Plays a transfer that ends with a result and a response code.
    void play(CURLcode result, int responseCode, std::function<void(const LibcurlSide&)> action = nullptr) {
        curl_.answerInfo(CURLINFO_RESPONSE_CODE, responseCode);
        curl_.playTransfer([result, action](const LibcurlSide& curl) {
            if (action) action(curl);
            return result;
        });
    }

    void perform() { request_->perform(); }

    CurlRecorder curl_;
    P<CTestRequest> request_ = new CTestRequest();
};

TEST_F(Perform, RunsTheTransferOnce) {
    curl_.takeCalls();
    play(CURLE_OK, 200);
    perform();
    EXPECT_THAT(curl_.takeCalls(), ElementsAre("perform"));
}

TEST_F(Perform, KeepsTheBodyInTheDefaultReceiveBuffer) {
    play(CURLE_OK, 200, [](const LibcurlSide& curl) {
        curl.headers({"HTTP/1.1 200 OK\r\n", "Content-Type: text/plain\r\n", "\r\n"});
        curl.write("first, ");
        curl.write("second");
    });
    perform();
    EXPECT_EQ(getBody(*request_), "first, second");
    EXPECT_EQ(request_->getHTTPStatusLine(), "HTTP/1.1 200 OK");
    EXPECT_EQ(plain(request_->getResponseHeaderMap()),
              (std::map<std::string, std::string>{{"content-type", "text/plain"}}));
    EXPECT_THAT(getResponseInfo(*request_),
                ElementsAre("HTTP/1.1 200 OK\r\n", "Content-Type: text/plain\r\n", "\r\n"));
}

TEST_F(Perform, LeavesNothingOfTheTransferBefore) {
    play(CURLE_OK, 200, [](const LibcurlSide& curl) {
        curl.headers({"HTTP/1.1 200 OK\r\n", "Content-Type: text/plain\r\n", "\r\n"});
        curl.write("a long body of the first transfer");
    });
    perform();
    play(CURLE_OK, 200, [](const LibcurlSide& curl) {
        curl.headers({"HTTP/1.1 201 Created\r\n", "A: b\r\n", "\r\n"});
        curl.write("short");
    });
    perform();
    EXPECT_EQ(getBody(*request_), "short");
    EXPECT_EQ(request_->getHTTPStatusLine(), "HTTP/1.1 201 Created");
    EXPECT_EQ(plain(request_->getResponseHeaderMap()), (std::map<std::string, std::string>{{"a", "b"}}));
    EXPECT_THAT(getResponseInfo(*request_), ElementsAre("HTTP/1.1 201 Created\r\n", "A: b\r\n", "\r\n"));
}

TEST_F(Perform, LeavesTheLinesOfTheTransferBeforeToWhoeverHoldsThem) {
    play(CURLE_OK, 200, [](const LibcurlSide& curl) { curl.headers({"HTTP/1.1 200 OK\r\n"}); });
    perform();
    const kel::PC<CNetStringList> held = &request_->getResponseInfo();
    play(CURLE_OK, 200, [](const LibcurlSide& curl) { curl.headers({"HTTP/1.1 201 Created\r\n"}); });
    perform();
    EXPECT_THAT(getResponseInfo(*request_), ElementsAre("HTTP/1.1 201 Created\r\n"));
    const P<CNetStringList::CIterator> line = held->createIterator();
    ASSERT_TRUE(line->next());
    EXPECT_EQ(line->getEntry(), "HTTP/1.1 200 OK\r\n");
    EXPECT_FALSE(line->next());
}

struct StatusCase {
    int code;
    bool succeeds;
};

class HTTPStatus : public Perform, public testing::WithParamInterface<StatusCase> {};

TEST_P(HTTPStatus, DecidesWhetherATransferThatLibcurlCompletedSucceeded) {
    play(CURLE_OK, GetParam().code);
    Thrown expected;
    if (!GetParam().succeeds) {
        std::map<std::string, std::string> params = {{"responseCodeDomain", "http"}, {"url", url}};
        if (GetParam().code > 0) params["responseCode"] = std::to_string(GetParam().code);
        expected = curlError(CURLE_HTTP_RETURNED_ERROR, "", params);
    }
    EXPECT_EQ(thrownBy([&] { perform(); }), expected);
}

INSTANTIATE_TEST_SUITE_P(All, HTTPStatus,
                         testing::Values(StatusCase{0, false}, StatusCase{100, false}, StatusCase{199, false},
                                         StatusCase{200, true}, StatusCase{204, true}, StatusCase{299, true},
                                         StatusCase{300, false}, StatusCase{302, false},
                                         StatusCase{404, false}, StatusCase{503, false}),
                         [](const auto& tested) { return std::to_string(tested.param.code); });

TEST_F(Perform, LooksAtTheStatusWhateverTheCaseOfTheScheme) {
    request_->setURL("HTTP://example.org/");
    play(CURLE_OK, 500);
    EXPECT_EQ(
        thrownBy([&] { perform(); }),
        curlError(CURLE_HTTP_RETURNED_ERROR, "",
                  {{"responseCodeDomain", "http"}, {"responseCode", "500"}, {"url", "HTTP://example.org/"}}));
}

class NonHTTPURL : public Perform, public testing::WithParamInterface<const char*> {};

TEST_P(NonHTTPURL, NeverFailsForItsResponseCode) {
    request_->setURL(GetParam());
    play(CURLE_OK, 550);
    EXPECT_EQ(thrownBy([&] { perform(); }), nothingThrown);
}

INSTANTIATE_TEST_SUITE_P(All, NonHTTPURL,
                         testing::Values("ftp://h/", "ftps://h/", "sftp://h/", "smtp://h/", "smtps://h/",
                                         "file:///h", "httpx://h/"));

TEST_F(Perform, RaisesA404WithTheBodysMessageTheStatusLineAndTheMethod) {
    request_->setHTTPMethod("DELETE");
    play(CURLE_OK, 404, [](const LibcurlSide& curl) {
        curl.headers({"HTTP/1.1 404 Not Found\r\n", "\r\n"});
        curl.write("There is no such key.");
    });
    EXPECT_EQ(thrownBy([&] { perform(); }), curlError(CURLE_HTTP_RETURNED_ERROR, "",
                                                      {{"responseCodeDomain", "http"},
                                                       {"responseCode", "404"},
                                                       {"serverMessage", "There is no such key."},
                                                       {"httpStatusLine", "HTTP/1.1 404 Not Found"},
                                                       {"url", url},
                                                       {"httpMethod", "DELETE"}}));
}

TEST_F(Perform, RaisesAnErrorStatusWithoutServerMessageWhenASinkTookTheBody) {
    const P<CRecordingSink> sink = new CRecordingSink();
    request_->setReceiveDataSink(sink);
    play(CURLE_OK, 404, [](const LibcurlSide& curl) {
        curl.headers({"HTTP/1.1 404 Not Found\r\n", "\r\n"});
        curl.write("There is no such key.");
    });
    EXPECT_EQ(thrownBy([&] { perform(); }), curlError(CURLE_HTTP_RETURNED_ERROR, "",
                                                      {{"responseCodeDomain", "http"},
                                                       {"responseCode", "404"},
                                                       {"httpStatusLine", "HTTP/1.1 404 Not Found"},
                                                       {"url", url}}));
    EXPECT_EQ(sink->getBytes(), "There is no such key.");
}

TEST_F(Perform, RaisesLibcurlsFailureWithItsErrorText) {
    play(CURLE_COULDNT_CONNECT, 0,
         [](const LibcurlSide& curl) { curl.setErrorText("Failed to connect to exämple.org port 80"); });
    EXPECT_EQ(thrownBy([&] { perform(); }),
              curlError(CURLE_COULDNT_CONNECT, "Failed to connect to exämple.org port 80",
                        {{"responseCodeDomain", "http"}, {"url", url}}));
}

TEST_F(Perform, RaisesLibcurlsFailureOfFTPWithoutStatusLineMethodAndServerMessage) {
    request_->setURL("ftp://example.org/file");
    request_->setHTTPMethod("PUT");
    play(CURLE_UPLOAD_FAILED, 550, [](const LibcurlSide& curl) {
        curl.header("550 Permission denied.\r\n");
        curl.write("body");
        curl.setErrorText("Failed FTP upload: 550");
    });
    EXPECT_EQ(thrownBy([&] { perform(); }), curlError(CURLE_UPLOAD_FAILED, "Failed FTP upload: 550",
                                                      {{"responseCodeDomain", "ftp"},
                                                       {"responseCode", "550"},
                                                       {"url", "ftp://example.org/file"}}));
}

TEST_F(Perform, RaisesLibcurlsFailureOfAnUnknownSchemeWithoutDomain) {
    request_->setURL("gibberish://h/");
    play(CURLE_UNSUPPORTED_PROTOCOL, 0);
    Thrown expected = curlError(CURLE_UNSUPPORTED_PROTOCOL, "", {{"url", "gibberish://h/"}});
    expected.details = "response code domain '', response code 0, server message '', status line '', "
                       "URL 'gibberish://h/', method ''";
    EXPECT_EQ(thrownBy([&] { perform(); }), expected);
}

TEST_F(Perform, RaisesALibcurlFailureWithAnErrorStatusUnderLibcurlsCode) {
    play(CURLE_PARTIAL_FILE, 404, [](const LibcurlSide& curl) {
        curl.headers({"HTTP/1.1 404 Not Found\r\n", "\r\n"});
        curl.write("cut of");
    });
    EXPECT_EQ(thrownBy([&] { perform(); }), curlError(CURLE_PARTIAL_FILE, "",
                                                      {{"responseCodeDomain", "http"},
                                                       {"responseCode", "404"},
                                                       {"serverMessage", "cut of"},
                                                       {"httpStatusLine", "HTTP/1.1 404 Not Found"},
                                                       {"url", url}}));
}

TEST_F(Perform, DoesNotReportAnErrorTextOfBefore) {
    curl_.sideOf(request_->getHandle()).setErrorText("old text");
    play(CURLE_COULDNT_CONNECT, 0);
    EXPECT_EQ(thrownBy([&] { perform(); }),
              curlError(CURLE_COULDNT_CONNECT, "", {{"responseCodeDomain", "http"}, {"url", url}}));
}

TEST_F(Perform, LogsAnErrorTextThatIsNotUTF8AndLeavesItOut) {
    const LogCapture log;
    play(CURLE_COULDNT_CONNECT, 0,
         [](const LibcurlSide& curl) { curl.setErrorText("Keine Verbindung m\xF6glich"); });
    EXPECT_EQ(thrownBy([&] { perform(); }),
              curlError(CURLE_COULDNT_CONNECT, "", {{"responseCodeDomain", "http"}, {"url", url}}));
    EXPECT_THAT(
        log.getEntries(),
        ElementsAre("error: A CURL function has failed, but the CURL error buffer does not contain valid "
                    "UTF8 data."));
}

TEST_F(Perform, RaisesThatLibcurlHasNoResponseCode) {
    play(CURLE_OK, 200);
    curl_.failInfo(CURLINFO_RESPONSE_CODE, CURLE_UNKNOWN_OPTION);
    EXPECT_EQ(thrownBy([&] { perform(); }), curlError(CURLE_UNKNOWN_OPTION, "", {{"url", url}}));
}

/// What a callback stored comes first, whatever libcurl makes of it.
class PendingError : public Perform, public testing::WithParamInterface<CURLcode> {};

TEST_P(PendingError, IsRaisedWhateverLibcurlReturns) {
    const P<CRecordingSink> sink = new CRecordingSink();
    sink->writes.failAt(1, getFaults().front().raise);
    request_->setReceiveDataSink(sink);
    play(GetParam(), 404, [](const LibcurlSide& curl) {
        curl.headers({"HTTP/1.1 404 Not Found\r\n", "\r\n"});
        curl.write("body");
    });
    EXPECT_EQ(thrownBy([&] { perform(); }), getFaults().front().asTransferred);
}

INSTANTIATE_TEST_SUITE_P(All, PendingError,
                         testing::Values(CURLE_OK, CURLE_WRITE_ERROR, CURLE_ABORTED_BY_CALLBACK,
                                         CURLE_OPERATION_TIMEDOUT));

TEST_F(Perform, RaisesTheFirstOfSeveralPendingErrors) {
    const P<CRecordingSink> sink = new CRecordingSink();
    const P<CRecordingSource> source = new CRecordingSource("data");
    sink->writes.failAt(1, [] { throw COwnError("first", ""); });
    source->reads.failAt(1, [] { throw COwnError("second", ""); });
    request_->setReceiveDataSink(sink);
    request_->setSendDataSource(source);
    play(CURLE_WRITE_ERROR, 200, [](const LibcurlSide& curl) {
        curl.headers({"HTTP/1.1 200 OK\r\n", "\r\n"});
        curl.write("body");
        char buffer[4];
        curl.read(buffer, 1, 4);
    });
    EXPECT_EQ(thrownBy([&] { perform(); }).message, "first");
}

TEST_F(Perform, ForgetsThePendingErrorOfTheTransferBefore) {
    const P<CRecordingSink> sink = new CRecordingSink();
    sink->writes.failAt(1, getFaults().front().raise);
    request_->setReceiveDataSink(sink);
    play(CURLE_OK, 200, [](const LibcurlSide& curl) {
        curl.headers({"HTTP/1.1 200 OK\r\n", "\r\n"});
        curl.write("body");
    });
    ASSERT_EQ(thrownBy([&] { perform(); }), getFaults().front().asTransferred);
    EXPECT_EQ(thrownBy([&] { perform(); }), nothingThrown);
}

// What happens before the transfer, and in which order

TEST_F(Perform, PassesTheCustomHeadersAgainWithWhatWasAddedSince) {
    const P<CNetHeaders> headers = new CNetHeaders();
    request_->setCustomHTTPHeaders(headers);
    headers->add("Accept", "text/plain");
    curl_.takeCalls();
    play(CURLE_OK, 200);
    perform();
    EXPECT_THAT(curl_.takeCalls(), ElementsAre("HTTPHEADER = [\"Accept: text/plain\"]", "perform"));
    headers->add("X-Größe", "groß");
    perform();
    EXPECT_THAT(curl_.takeCalls(),
                ElementsAre("HTTPHEADER = [\"Accept: text/plain\", \"X-Größe: groß\"]", "perform"));
    EXPECT_EQ(request_->getCustomHTTPHeaders(), headers);
}

TEST_F(Perform, PassesNoHeadersOnceTheyWereTakenBack) {
    const P<CNetHeaders> headers = new CNetHeaders();
    headers->add("Accept", "text/plain");
    request_->setCustomHTTPHeaders(headers);
    curl_.takeCalls();
    request_->setCustomHTTPHeaders(nullptr);
    play(CURLE_OK, 200);
    perform();
    EXPECT_THAT(curl_.takeCalls(), ElementsAre("HTTPHEADER = null", "perform"));
    EXPECT_EQ(request_->getCustomHTTPHeaders(), nullptr);
}

/// A request with a response, a log, and all that a perform clears.
class BeforePerform : public Perform {
protected:
    BeforePerform() {
        request_->setVerbose(true);
        play(CURLE_OK, 200, [this](const LibcurlSide& curl) {
            curl.headers({"HTTP/1.1 200 OK\r\n", "A: b\r\n", "\r\n"});
            curl.write("body");
            curl.debug(request_->getHandle(), CURLINFO_TEXT, "hello");
        });
        perform();
    }

    std::string describeState() {
        std::string state = request_->getHTTPStatusLine().toUTF8();
        for (const auto& [name, value] : plain(request_->getResponseHeaderMap()))
            state += ", " + name + "=" + value;
        state += ", " + std::to_string(request_->getVerboseOutput(10)->getChildren().size()) + " messages, ";
        state += std::to_string(getResponseInfo(*request_).size()) + " lines, '" + getBody(*request_) + "'";
        return state;
    }
};

TEST_F(BeforePerform, TheHeadersArePassedFirstSoThatTheirRefusalChangesNothing) {
    const std::string before = describeState();
    ASSERT_EQ(before, "HTTP/1.1 200 OK, a=b, 1 messages, 3 lines, 'body'");
    const P<CRecordingSource> source = new CRecordingSource("data");
    source->position = 2;
    request_->setSendDataSource(source);
    request_->setCustomHTTPHeaders(new CNetHeaders());
    curl_.failOption(CURLOPT_HTTPHEADER, CURLE_OUT_OF_MEMORY, "no room");
    curl_.takeCalls();
    EXPECT_EQ(thrownBy([&] { perform(); }), curlError(CURLE_OUT_OF_MEMORY, "no room", {{"url", url}}));
    EXPECT_EQ(describeState(), before);
    EXPECT_THAT(source->takeCalls(), IsEmpty());
    EXPECT_THAT(curl_.takeCalls(), ElementsAre("HTTPHEADER = null"));
}

TEST_F(BeforePerform, TheSourceIsRewoundLastWhenAllElseIsCleared) {
    const P<CRecordingSource> source = new CRecordingSource("data");
    source->position = 2;
    std::string state;
    source->onPosition = [&] { state = describeState(); };
    request_->setSendDataSource(source);
    play(CURLE_OK, 200);
    perform();
    EXPECT_EQ(state, ", 0 messages, 0 lines, ''");
    EXPECT_THAT(source->takeCalls(), ElementsAre("position", "seek 0"));
}

TEST_F(BeforePerform, TheStatusCodeIsSettledAnew) {
    const P<CRecordingSink> sink = new CRecordingSink();
    request_->setReceiveDataSink(sink);
    play(CURLE_OK, 201, [](const LibcurlSide& curl) {
        curl.headers({"HTTP/1.1 201 Created\r\n", "\r\n"});
        curl.write("x");
    });
    perform();
    ASSERT_EQ(sink->blocks.size(), 1U);
    EXPECT_EQ(sink->blocks[0].httpStatusCode, 201);
}

TEST_F(Perform, LeavesASourceAtItsStartAlone) {
    const P<CRecordingSource> source = new CRecordingSource("data");
    request_->setSendDataSource(source);
    play(CURLE_OK, 200);
    perform();
    EXPECT_THAT(source->takeCalls(), ElementsAre("position"));
}

TEST_F(Perform, RewindsTheSourceOfTheTransferBefore) {
    const P<CRecordingSource> source = new CRecordingSource("data");
    request_->setSendDataSource(source);
    std::string sent;
    play(CURLE_OK, 200, [&sent](const LibcurlSide& curl) {
        char buffer[10];
        sent.append(buffer, curl.read(buffer, 1, sizeof buffer));
    });
    perform();
    perform();
    EXPECT_EQ(sent, "datadata");
    EXPECT_THAT(source->takeCalls(),
                ElementsAre("position", "read 4 of 10", "position", "seek 0", "read 4 of 10"));
}

class RewindFault : public Perform, public testing::WithParamInterface<std::size_t> {
protected:
    const Fault& fault() const { return getFaults().at(GetParam()); }
};

TEST_P(RewindFault, OfTheSeekIsRaisedBeforeTheTransferBegins) {
    const P<CRecordingSource> source = new CRecordingSource("data");
    source->position = 2;
    source->seeks.failAt(1, fault().raise);
    request_->setSendDataSource(source);
    curl_.takeCalls();
    play(CURLE_OK, 200);
    EXPECT_EQ(thrownBy([&] { perform(); }), fault().asThrown);
    EXPECT_THAT(curl_.takeCalls(), IsEmpty());
    EXPECT_EQ(thrownBy([&] { perform(); }), nothingThrown);
}

TEST_P(RewindFault, OfThePositionIsRaisedBeforeTheTransferBegins) {
    const P<CRecordingSource> source = new CRecordingSource("data");
    source->positions.failAt(1, fault().raise);
    request_->setSendDataSource(source);
    curl_.takeCalls();
    play(CURLE_OK, 200);
    EXPECT_EQ(thrownBy([&] { perform(); }), fault().asThrown);
    EXPECT_THAT(curl_.takeCalls(), IsEmpty());
    EXPECT_EQ(thrownBy([&] { perform(); }), nothingThrown);
}

INSTANTIATE_TEST_SUITE_P(All, RewindFault, testing::Range(std::size_t{0}, getFaults().size()));

} // namespace

} // namespace vantra::test
