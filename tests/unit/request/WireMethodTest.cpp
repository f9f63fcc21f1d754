#include "Doubles.h"
#include "Thrown.h"
#include "WireFixture.h"

#include "vantra/NetRequest.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace vantra::test {

namespace {

using kel::P;
using kel::String;
using testsupport::okResponse;

using WireMethod = Wire;

TEST_F(WireMethod, NoneIsAGet) {
    EXPECT_EQ(performAndGetBytes(), head("GET"));
    EXPECT_EQ(getBody(*request_), "answer");
}

TEST_F(WireMethod, GetIsAGet) {
    request_->setHTTPMethod("GET");
    EXPECT_EQ(performAndGetBytes(), head("GET"));
}

TEST_F(WireMethod, HeadReceivesNoBody) {
    request_->setHTTPMethod("HEAD");
    EXPECT_EQ(performAndGetBytes("HTTP/1.1 200 OK\r\nContent-Length: 5\r\n\r\n"), head("HEAD"));
    EXPECT_EQ(getBody(*request_), "");
    EXPECT_EQ(request_->getDownloadSize(), 5);
    EXPECT_EQ(request_->getDownloadedBytes(), 0);
}

TEST_F(WireMethod, DeleteAndOtherMethodsAreSentAsTheyAre) {
    for (const char* method : {"DELETE", "PROPFIND", "post", "get"}) {
        request_->setHTTPMethod(method);
        EXPECT_EQ(performAndGetBytes(), head(method));
    }
}

TEST_F(WireMethod, PutSendsTheDataWithItsLength) {
    request_->setHTTPMethod("PUT");
    request_->setSendDataAsUTF8("data €");
    EXPECT_EQ(performAndGetBytes(), head("PUT", "Content-Length: 8\r\nExpect: 100-continue\r\n") + "data €");
    EXPECT_EQ(request_->getUploadSize(), 8);
    EXPECT_EQ(request_->getUploadedBytes(), 8);
}

TEST_F(WireMethod, PutOfAnEmptyTextSendsNoBody) {
    request_->setHTTPMethod("PUT");
    request_->setSendDataAsUTF8("");
    EXPECT_EQ(performAndGetBytes(), head("PUT", "Content-Length: 0\r\n"));
}

TEST_F(WireMethod, PutOfUnknownLengthSendsChunks) {
    request_->setHTTPMethod("PUT");
    const P<CRecordingSource> source = new CRecordingSource("0123456789abcde");
    source->blockSize = 10;
    request_->setSendDataSource(source);
    EXPECT_EQ(performAndGetBytes(), head("PUT", "Transfer-Encoding: chunked\r\nExpect: 100-continue\r\n") +
                                        "a\r\n0123456789\r\n5\r\nabcde\r\n0\r\n\r\n");
    EXPECT_EQ(request_->getHTTPStatusLine(), "HTTP/1.1 200 OK");
}

TEST_F(WireMethod, NothingIsSentBehindTheAnnouncedLength) {
    const std::map<std::string, std::string> headersByMethod = {
        {"PUT", "Content-Length: 4\r\nExpect: 100-continue\r\n"},
        {"POST", "Content-Length: 4\r\nContent-Type: application/x-www-form-urlencoded\r\n"},
    };
    for (const auto& [method, headers] : headersByMethod) {
        for (const unsigned int blockSize : {1U, 3U, 10U}) {
            request_->setHTTPMethod(String(method));
            const P<CRecordingSource> source = new CRecordingSource("0123456789");
            source->blockSize = blockSize;
            request_->setSendDataSource(source);
            request_->setSendDataSize(4);
            for (int i = 0; i < 2; ++i) {
                EXPECT_EQ(performAndGetBytes(), head(method, headers) + "0123") << blockSize;
                EXPECT_EQ(source->position, 4) << blockSize;
            }
        }
    }
}

TEST_F(WireMethod, PostSendsTheDataWithItsLength) {
    request_->setHTTPMethod("POST");
    request_->setSendDataAsUTF8("a=b&c=d");
    EXPECT_EQ(performAndGetBytes(),
              head("POST", "Content-Length: 7\r\nContent-Type: application/x-www-form-urlencoded\r\n") +
                  "a=b&c=d");
}

TEST_F(WireMethod, PostAfterTheDataSendsItToo) {
    request_->setSendDataAsUTF8("a=b");
    request_->setHTTPMethod("POST");
    EXPECT_EQ(performAndGetBytes(),
              head("POST", "Content-Length: 3\r\nContent-Type: application/x-www-form-urlencoded\r\n") +
                  "a=b");
}

TEST_F(WireMethod, PostSendsABodyGivenAsAnOption) {
    const std::string form(300, 'f');
    const std::string headers = "Content-Length: 300\r\nContent-Type: application/x-www-form-urlencoded\r\n";
    for (const CURLoption option : {CURLOPT_POSTFIELDS, CURLOPT_COPYPOSTFIELDS}) {
        request_->setHTTPMethod("POST");
        request_->setSendDataSize(100000); // of a body before
        request_->setOptionString(option, String(form));
        EXPECT_EQ(performAndGetBytes(), head("POST", headers) + form);
        request_->setOptionPtr(CURLOPT_POSTFIELDS, nullptr);
    }
}

TEST_F(WireMethod, PostOfUnknownLengthSendsChunks) {
    request_->setHTTPMethod("POST");
    const P<CRecordingSource> source = new CRecordingSource("0123456789");
    request_->setSendDataSource(source);
    EXPECT_EQ(performAndGetBytes(),
              head("POST", "Transfer-Encoding: chunked\r\nContent-Type: application/x-www-form-urlencoded\r\n"
                           "Expect: 100-continue\r\n") +
                  "a\r\n0123456789\r\n0\r\n\r\n");
}

TEST_F(WireMethod, IsTheSameOnTheWireWhateverTheMethodWasBefore) {
    const std::string form = "Content-Type: application/x-www-form-urlencoded\r\n";
    const std::map<std::string, std::string> bytesByMethod = {
        {"", head("GET")},
        {"GET", head("GET")},
        {"HEAD", head("HEAD")},
        {"PUT", head("PUT", "Content-Length: 4\r\nExpect: 100-continue\r\n") + "data"},
        {"POST", head("POST", "Content-Length: 4\r\n" + form) + "data"},
        {"DELETE", head("DELETE")},
    };
    const std::string emptyAnswer = "HTTP/1.1 200 OK\r\nContent-Length: 0\r\n\r\n";
    request_->setSendDataAsUTF8("data");
    for (const auto& [from, fromBytes] : bytesByMethod) {
        for (const auto& [to, toBytes] : bytesByMethod) {
            request_->setHTTPMethod(String(from));
            EXPECT_EQ(performAndGetBytes(emptyAnswer), fromBytes) << from;
            request_->setHTTPMethod(String(to));
            EXPECT_EQ(performAndGetBytes(emptyAnswer), toBytes) << from << " to " << to;
        }
    }
}

TEST_F(WireMethod, PutAndPostWithoutDataSendAnEmptyBodyOfUnknownLength) {
    request_->setHTTPMethod("PUT");
    EXPECT_EQ(performAndGetBytes(),
              head("PUT", "Transfer-Encoding: chunked\r\nExpect: 100-continue\r\n") + "0\r\n\r\n");
    request_->setHTTPMethod("POST");
    EXPECT_EQ(performAndGetBytes(),
              head("POST", "Transfer-Encoding: chunked\r\nContent-Type: application/x-www-form-urlencoded\r\n"
                           "Expect: 100-continue\r\n") +
                  "0\r\n\r\n");
}

TEST_F(Wire, SendsTheRequestToTheProxy) {
    request_->setProxy(String(server_.url()));
    request_->setURL("http://example.invalid/path");
    EXPECT_EQ(performAndGetBytes(), "GET http://example.invalid/path HTTP/1.1\r\nHost: example.invalid\r\n"
                                    "Accept: */*\r\nProxy-Connection: Keep-Alive\r\n\r\n");
}

TEST_F(Wire, SendsCustomHeadersRangeAndCredentials) {
    const P<CNetHeaders> headers = new CNetHeaders();
    headers->add("X-Name", "Größe");
    headers->add("Accept", "text/plain");
    request_->setCustomHTTPHeaders(headers);
    request_->setUserName("user");
    request_->setUserPassword("pass");
    request_->setRange(0, 10);
    EXPECT_EQ(performAndGetBytes("HTTP/1.1 206 Partial Content\r\nContent-Length: 1\r\n\r\nx"),
              "GET /path HTTP/1.1\r\n" + hostLine() +
                  "Authorization: Basic dXNlcjpwYXNz\r\nRange: bytes=0-9\r\nX-Name: Größe\r\nAccept: "
                  "text/plain\r\n\r\n");
}

TEST_F(Wire, SendsTheHeadersAsTheyAreAtEachPerform) {
    const P<CNetHeaders> headers = new CNetHeaders();
    request_->setCustomHTTPHeaders(headers);
    EXPECT_EQ(performAndGetBytes(), head("GET"));
    headers->add("A", "b");
    EXPECT_EQ(performAndGetBytes(), head("GET", "A: b\r\n"));
}

TEST_F(Wire, SendsNothingOfBeforeAfterReset) {
    const P<CNetHeaders> headers = new CNetHeaders();
    headers->add("A", "b");
    request_->setCustomHTTPHeaders(headers);
    request_->setHTTPMethod("PUT");
    request_->setSendDataAsUTF8("data");
    request_->setUserName("user");
    request_->setRange(5, -1);
    performAndGetBytes();
    request_->reset();
    request_->setURL(String(server_.url("/path")));
    EXPECT_EQ(performAndGetBytes(), head("GET"));
}

TEST_F(Wire, SendsTheSameBodyAgainInASecondPerform) {
    request_->setHTTPMethod("PUT");
    const P<CRecordingSource> source = new CRecordingSource("data");
    request_->setSendDataSource(source);
    request_->setSendDataSize(4);
    const std::string bytes = head("PUT", "Content-Length: 4\r\nExpect: 100-continue\r\n") + "data";
    EXPECT_EQ(performAndGetBytes(), bytes);
    EXPECT_EQ(performAndGetBytes(), bytes);
}

TEST_F(Wire, SendsASourceFromItsStartWhereverItStood) {
    request_->setHTTPMethod("PUT");
    const P<CRecordingSource> source = new CRecordingSource("data");
    source->position = 3;
    request_->setSendDataSource(source);
    request_->setSendDataSize(4);
    EXPECT_EQ(performAndGetBytes(), head("PUT", "Content-Length: 4\r\nExpect: 100-continue\r\n") + "data");
}

TEST_F(Wire, UsesOneConnectionForOneTransferAfterAnother) {
    performAndGetBytes(okResponse("first"));
    EXPECT_EQ(getBody(*request_), "first");
    request_->reset();
    request_->setURL(String(server_.url("/again")));
    performAndGetBytes(okResponse("second"));
    EXPECT_EQ(getBody(*request_), "second");
    EXPECT_EQ(server_.connectionCount(), 1U);
}

} // namespace

} // namespace vantra::test
