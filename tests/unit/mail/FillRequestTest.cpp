#include "vantra/MultiPartMimeMessage.h"
#include "vantra/NetRequest.h"

#include "Bytes.h"
#include "CurlRecorder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>

namespace vantra::test {

namespace {

using kel::P;
using testing::Contains;
using testing::ElementsAre;

class AFilledRequest : public testing::Test {
protected:
    /// What the request tells libcurl of its headers and size.
    std::vector<std::string> performAndTakeOptions() {
        curl_.playTransfer([this](const LibcurlSide& curl) {
            std::array<char, 1000> buffer{};
            const std::size_t length = curl.read(buffer.data(), 1, buffer.size());
            sent_.assign(buffer.data(), length);
            return CURLE_OK;
        });
        request_->setURL("ftp://h/");
        request_->perform();
        std::vector<std::string> options;
        for (const std::string& call : curl_.takeCalls())
            if (call.starts_with("HTTPHEADER") || call.starts_with("INFILESIZE")) options.push_back(call);
        return options;
    }

    CurlRecorder curl_;
    P<CNetRequest> request_ = new CNetRequest();
    std::string sent_;
};

TEST_F(AFilledRequest, HasTheFieldsAsHeadersAndTheBodyAsData) {
    const P<CMimeMessage> message = new CMimeMessage("text/plain");
    message->setBody(makeBuffer("hello"), "7bit");
    message->fillRequest(*request_);
    EXPECT_THAT(performAndTakeOptions(),
                ElementsAre("HTTPHEADER = null", "INFILESIZE_LARGE = 5",
                            "HTTPHEADER = [\"Content-Transfer-Encoding: 7bit\", \"Content-Type: "
                            "text/plain\", \"MIME-Version: 1.0\"]"));
    EXPECT_EQ(sent_, "hello");
}

TEST_F(AFilledRequest, KeepsTheHeadersThatItHadAndGetsMore) {
    const P<CNetHeaders> headers = new CNetHeaders();
    headers->add("Accept", "text/plain");
    headers->add("MIME-Version", "0.9");
    request_->setCustomHTTPHeaders(headers);
    curl_.takeCalls();
    const P<CMimeMessage> message = new CMimeMessage("");
    message->fillRequest(*request_);
    EXPECT_EQ(request_->getCustomHTTPHeaders(), headers);
    EXPECT_THAT(
        performAndTakeOptions(),
        Contains("HTTPHEADER = [\"Accept: text/plain\", \"MIME-Version: 0.9\", \"MIME-Version: 1.0\"]"));
}

TEST_F(AFilledRequest, GetsValuesNeitherEncodedNorFolded) {
    const P<CMimeMessage> message = new CMimeMessage("");
    message->getHeaders()["Subject"] = "caf\u00e9";
    message->fillRequest(*request_);
    EXPECT_THAT(performAndTakeOptions(),
                Contains("HTTPHEADER = [\"MIME-Version: 1.0\", \"Subject: caf\u00e9\"]"));
}

TEST_F(AFilledRequest, SendsNothingForAMessageWithoutBody) {
    const P<CMimeMessage> message = new CMimeMessage("");
    message->fillRequest(*request_);
    EXPECT_THAT(performAndTakeOptions(), Contains("INFILESIZE_LARGE = 0"));
    EXPECT_EQ(sent_, "");
}

TEST_F(AFilledRequest, SendsTheBodyAsItWasWhenItWasFilled) {
    const P<CMimeMessage> message = new CMimeMessage("");
    const P<ByteBuffer> body = makeBuffer("then");
    message->setBody(body, "");
    message->fillRequest(*request_);
    (*body)[0] = 'T';
    performAndTakeOptions();
    EXPECT_EQ(sent_, "then");
}

TEST_F(AFilledRequest, SendsThePartsOfAMultipartMessageUnderItsHeaders) {
    const P<CMultiPartMimeMessage> message = new CMultiPartMimeMessage();
    const P<CMimeMessage> part = new CMimeMessage("text/plain");
    message->addPart(part);
    message->fillRequest(*request_);
    const std::string b = message->getBoundary().toUTF8();
    const std::string body =
        "--" + b + "\r\nContent-Type: text/plain\r\nMIME-Version: 1.0\r\n\r\n\r\n--" + b + "--\r\n";
    EXPECT_THAT(performAndTakeOptions(),
                ElementsAre("HTTPHEADER = null", "INFILESIZE_LARGE = " + std::to_string(body.size()),
                            "HTTPHEADER = [\"Content-Type: multipart/mixed; boundary=" + b +
                                "\", \"MIME-Version: 1.0\"]"));
    EXPECT_EQ(sent_, body);
}

TEST_F(AFilledRequest, CanBeFilledWithAnotherMessage) {
    for (const char* const text : {"one", "three"}) {
        const P<CMimeMessage> message = new CMimeMessage("");
        message->setBody(makeBuffer(text), "");
        message->fillRequest(*request_);
        performAndTakeOptions();
        EXPECT_EQ(sent_, text);
        request_->reset();
    }
}

TEST(MimeMessage, AddsItsRawFieldsToACollection) {
    const P<CMimeMessage> message = new CMimeMessage("text/plain");
    message->getHeaders()["Subject"] = " caf\u00e9 ";
    const P<CNetHeaders> headers = new CNetHeaders();
    headers->add("Accept", "*/*");
    message->updateNetHeaders(*headers);
    std::vector<std::string> fields;
    const P<CNetHeaders::CIterator> iterator = headers->createIterator();
    while (iterator->next()) fields.push_back((iterator->getName() + "|" + iterator->getValue()).toUTF8());
    EXPECT_THAT(fields, ElementsAre("Accept|*/*", "Content-Type|text/plain", "MIME-Version|1.0",
                                    "Subject|caf\u00e9"));
}

} // namespace

} // namespace vantra::test
