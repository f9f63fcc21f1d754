#include "CurlRecorder.h"
#include "Doubles.h"
#include "Thrown.h"

#include "vantra/NetRequest.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace vantra::test {

namespace {

using kel::P;
using kel::String;

std::string messageOf(std::string_view body, const HeaderMap& headers = {}) {
    return CNetRequest::getServerErrorMessageFromResponseData(
               reinterpret_cast<const unsigned char*>(body.data()), static_cast<int>(body.size()), headers)
        .toUTF8();
}

std::string messageOfHTML(std::string_view body) { return messageOf(body, {{"content-type", "text/html"}}); }

TEST(ServerMessage, OfPlainTextIsTheTextAsItIs) {
    EXPECT_EQ(messageOf("  No such key: <a>\t b\r\n\r\n "), "  No such key: <a>\t b\r\n\r\n ");
    EXPECT_EQ(messageOf("Schlüssel fehlt ✗", {{"content-type", "text/plain"}}), "Schlüssel fehlt ✗");
    EXPECT_EQ(messageOf("<Error><Code>NoSuchKey</Code></Error>", {{"content-type", "application/xml"}}),
              "<Error><Code>NoSuchKey</Code></Error>");
}

TEST(ServerMessage, OfNothingIsEmpty) {
    EXPECT_EQ(messageOf(""), "");
    EXPECT_EQ(CNetRequest::getServerErrorMessageFromResponseData(nullptr, 0, {}), "");
    EXPECT_EQ(CNetRequest::getServerErrorMessageFromResponseData(nullptr, 5, {}), "");
    const unsigned char byte = 'x';
    EXPECT_EQ(CNetRequest::getServerErrorMessageFromResponseData(&byte, -1, {}), "");
}

TEST(ServerMessage, OfInvalidUTF8IsEmpty) {
    EXPECT_EQ(messageOf("Schl\xFCssel"), "");
    EXPECT_EQ(messageOfHTML("<p>Schl\xFCssel</p>"), "");
    EXPECT_EQ(messageOf("cut in the middle \xE2\x9C"), "");
}

TEST(ServerMessage, IsHTMLByTheStartOfTheContentType) {
    const std::string body = "<b>No</b>";
    EXPECT_EQ(messageOf(body, {{"content-type", "text/html"}}), "No");
    EXPECT_EQ(messageOf(body, {{"content-type", "text/html; charset=utf-8"}}), "No");
    EXPECT_EQ(messageOf(body, {{"content-type", "text/htmlx"}}), "No");
    EXPECT_EQ(messageOf(body, {{"content-type", "TEXT/HTML"}}), body);
    EXPECT_EQ(messageOf(body, {{"content-type", "application/text/html"}}), body);
    EXPECT_EQ(messageOf(body, {{"Content-Type", "text/html"}}), body);
}

TEST(ServerMessage, IsHTMLByAnHTMLTagInTheText) {
    EXPECT_EQ(messageOf("<!DOCTYPE html>\n<html lang=\"en\"><b>No</b></html>"), "No");
    EXPECT_EQ(messageOf("No <html", {{"content-type", "text/plain"}}), "No");
    EXPECT_EQ(messageOf("<HTML><b>No</b></HTML>"), "<HTML><b>No</b></HTML>");
}

TEST(ServerMessage, OfHTMLHasABlankForEachTag) {
    EXPECT_EQ(messageOfHTML("a<b>c</b>d"), "a c d");
    EXPECT_EQ(messageOfHTML("a<br/><br/>b"), "a b");
    EXPECT_EQ(messageOfHTML("1 > 0<p>x"), "1 > 0 x");
}

TEST(ServerMessage, OfHTMLEndsATagAtTheFirstClosingBracket) {
    EXPECT_EQ(messageOfHTML("a<b <c>d>e"), "a d>e");
    EXPECT_EQ(messageOfHTML("a<>b"), "a b");
}

TEST(ServerMessage, OfHTMLLosesTheRestAfterATagThatIsNotClosed) {
    EXPECT_EQ(messageOfHTML("a<b c d"), "a");
    EXPECT_EQ(messageOfHTML("a<"), "a");
    EXPECT_EQ(messageOfHTML("<"), "");
}

TEST(ServerMessage, OfHTMLKeepsEntities) {
    EXPECT_EQ(messageOfHTML("a &lt;b&gt; &amp; c"), "a &lt;b&gt; &amp; c");
}

TEST(ServerMessage, OfHTMLHasItsWhiteSpaceFolded) {
    EXPECT_EQ(messageOfHTML("  a\tb  \r\n\r\n\t c \n d   e\n\n\n\nf \t\n"), "a b\nc\nd e\nf");
    EXPECT_EQ(messageOfHTML(" \t\r\n "), "");
    EXPECT_EQ(messageOfHTML("a     b"), "a b");
    EXPECT_EQ(messageOfHTML("a\n \n \nb"), "a\nb");
}

TEST(ServerMessage, OfHTMLKeepsALoneCarriageReturn) { EXPECT_EQ(messageOfHTML("a\rb"), "a\rb"); }

TEST(ServerMessage, OfAnErrorPageReadsAsText) {
    EXPECT_EQ(messageOfHTML("<html>\r\n<head><title>404 Not Found</title></head>\r\n<body>\r\n"
                            "<center><h1>404 Not Found</h1></center>\r\n<hr><center>nginx</center>\r\n"
                            "</body>\r\n</html>\r\n"),
              "404 Not Found\n404 Not Found\nnginx");
}

TEST(ServerMessage, IsOfTheFirst4096BytesAlone) {
    EXPECT_EQ(messageOf(std::string(4096, 'a')), std::string(4096, 'a'));
    EXPECT_EQ(messageOf(std::string(4097, 'a')), std::string(4096, 'a'));
    EXPECT_EQ(messageOf(std::string(4096, 'a') + "\xFF"), std::string(4096, 'a'));
    EXPECT_EQ(messageOf(std::string(4090, 'a') + "<html>"), std::string(4090, 'a'));
    EXPECT_EQ(messageOf(std::string(4092, 'a') + "<html>"), std::string(4092, 'a') + "<htm");
}

TEST(ServerMessage, LosesACharacterThatTheLimitCuts) {
    for (const std::string character : {"ä", "€", "😀"}) {
        for (std::size_t inside = 1; inside < character.size(); ++inside) {
            const std::string text(4096 - inside, 'a');
            EXPECT_EQ(messageOf(text + character + "and so on"), text) << character << ' ' << inside;
        }
        const std::string text(4096 - character.size(), 'a');
        EXPECT_EQ(messageOf(text + character + "and so on"), text + character) << character;
        EXPECT_EQ(messageOf(text + character), text + character) << character;
    }
}

TEST(ServerMessage, IsEmptyWhenWhatIsNotUTF8LiesBeforeTheLimit) {
    EXPECT_EQ(messageOf(std::string(4095, 'a') + "\x80" + "b"), "");
    EXPECT_EQ(messageOf(std::string(4095, 'a') + "\xFF" + "b"), "");
    EXPECT_EQ(messageOf("\xFF" + std::string(5000, 'a')), "");
}

/// The message as a failed request reports it.
class ServerMessageOfARequest : public testing::Test {
protected:
    /// Performs a transfer that receives header lines and a body.
    /// @return the server message of its error.
    std::string perform(CURLcode result, int responseCode, const std::vector<std::string>& lines,
                        const std::string& body = "") {
        curl_.answerInfo(CURLINFO_RESPONSE_CODE, responseCode);
        curl_.playTransfer([&](const LibcurlSide& curl) {
            curl.headers(lines);
            if (!body.empty()) curl.write(body);
            return result;
        });
        const Thrown thrown = thrownBy([&] { request_->perform(); });
        EXPECT_EQ(thrown.type, "CCURLError");
        const auto found = thrown.params.find("serverMessage");
        return found == thrown.params.end() ? "(none)" : found->second;
    }

    std::string performSMTP(int responseCode, const std::vector<std::string>& lines) {
        request_->setURL("smtp://example.org/");
        return perform(CURLE_SEND_ERROR, responseCode, lines);
    }

    CurlRecorder curl_;
    P<CNetRequest> request_ = new CNetRequest();
};

TEST_F(ServerMessageOfARequest, UsesTheResponsesContentType) {
    request_->setURL("http://example.org/");
    EXPECT_EQ(perform(CURLE_OK, 404, {"HTTP/1.1 404 Not Found\r\n", "Content-Type: text/html\r\n", "\r\n"},
                      "<h1>Not here</h1>"),
              "Not here");
}

TEST_F(ServerMessageOfARequest, IsAbsentForAnEmptyBody) {
    request_->setURL("http://example.org/");
    EXPECT_EQ(perform(CURLE_OK, 404, {"HTTP/1.1 404 Not Found\r\n", "\r\n"}), "(none)");
}

TEST_F(ServerMessageOfARequest, IsCutInALongBody) {
    request_->setURL("http://example.org/");
    EXPECT_EQ(
        perform(CURLE_OK, 500, {"HTTP/1.1 500 Oops\r\n", "\r\n"}, std::string(4095, 'a') + "ä" + "tail"),
        std::string(4095, 'a'));
}

TEST_F(ServerMessageOfARequest, IsAbsentForFTP) {
    request_->setURL("ftp://example.org/");
    EXPECT_EQ(perform(CURLE_REMOTE_ACCESS_DENIED, 550, {"550 No.\r\n"}, "body"), "(none)");
}

TEST_F(ServerMessageOfARequest, OfSMTPIsTheLastLineThatBeginsWithTheResponseCode) {
    EXPECT_EQ(performSMTP(550, {"220 ready\r\n", "250-example.org\r\n", "250 SIZE\r\n",
                                "550-5.1.1 Nobody\r\n", "550 5.1.1 by that näme \r\n", "221 Bye\r\n"}),
              "550 5.1.1 by that näme");
}

TEST_F(ServerMessageOfARequest, OfSMTPIsTheVeryLastLineWhenNoneBeginsWithTheResponseCode) {
    EXPECT_EQ(performSMTP(550, {"220 ready\r\n", "421 4.3.2 closing\r\n"}), "421 4.3.2 closing");
}

TEST_F(ServerMessageOfARequest, OfSMTPIsAbsentWithoutLines) { EXPECT_EQ(performSMTP(550, {}), "(none)"); }

TEST_F(ServerMessageOfARequest, OfSMTPIsAbsentWithoutResponseCode) {
    EXPECT_EQ(performSMTP(0, {"220 ready\r\n"}), "(none)");
}

TEST_F(ServerMessageOfARequest, OfSMTPIsTakenWithResponseCodeOne) {
    EXPECT_EQ(performSMTP(1, {"220 ready\r\n"}), "220 ready");
}

TEST_F(ServerMessageOfARequest, OfSMTPReadsALineThatIsNotUTF8AsLatin1) {
    EXPECT_EQ(performSMTP(550, {"550 Unbekannter Empf\xE4nger\r\n"}), "550 Unbekannter Empfänger");
}

TEST_F(ServerMessageOfARequest, OfSMTPLeavesStatusLineAndMethodOut) {
    request_->setURL("smtp://example.org/");
    request_->setHTTPMethod("PUT");
    curl_.answerInfo(CURLINFO_RESPONSE_CODE, 550);
    curl_.playTransfer([](const LibcurlSide& curl) {
        curl.headers({"550 No.\r\n"});
        return CURLE_SEND_ERROR;
    });
    EXPECT_EQ(thrownBy([&] { request_->perform(); }), curlError(CURLE_SEND_ERROR, "",
                                                                {{"responseCodeDomain", "smtp"},
                                                                 {"responseCode", "550"},
                                                                 {"serverMessage", "550 No."},
                                                                 {"url", "smtp://example.org/"}}));
}

} // namespace

} // namespace vantra::test
