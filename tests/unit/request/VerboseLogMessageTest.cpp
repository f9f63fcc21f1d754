#include "VerboseLogFixture.h"

#include "vantra/NetRequest.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace vantra::test {

namespace {

using testing::ElementsAre;

using VerboseLogMessage = VerboseLog;

// One message

TEST_F(VerboseLogMessage, NamesEachKindOfMessage) {
    setSettings(3, 3);
    EXPECT_EQ(render(CURLINFO_TEXT, "a b"), "info [T] a b");
    EXPECT_EQ(render(CURLINFO_HEADER_IN, "a b"), "receive [type=header T] a b");
    EXPECT_EQ(render(CURLINFO_HEADER_OUT, "a b"), "send [type=header T] a b");
    EXPECT_EQ(render(CURLINFO_DATA_IN, "a b"), "receive [type=data T bytes=3] a%20b");
    EXPECT_EQ(render(CURLINFO_DATA_OUT, "a b"), "send [type=data T bytes=3] a%20b");
    EXPECT_EQ(render(CURLINFO_SSL_DATA_IN, "a b"), "receive [type=ssl_data T bytes=3] a%20b");
    EXPECT_EQ(render(CURLINFO_SSL_DATA_OUT, "a b"), "send [type=ssl_data T bytes=3] a%20b");
    EXPECT_EQ(render(CURLINFO_END, "a b"), "unknown [T bytes=3] a%20b");
}

TEST_F(VerboseLogMessage, ShowsSizesAloneWithoutTheContentBit) {
    setSettings(2, 2);
    EXPECT_EQ(render(CURLINFO_TEXT, "a b"), "info [T] a b");
    EXPECT_EQ(render(CURLINFO_HEADER_IN, "a b"), "receive [type=header T] a b");
    EXPECT_EQ(render(CURLINFO_HEADER_OUT, "a b"), "send [type=header T] a b");
    EXPECT_EQ(render(CURLINFO_DATA_IN, "a b"), "receive [type=data T bytes=3] ~stripped~");
    EXPECT_EQ(render(CURLINFO_DATA_OUT, "a b"), "send [type=data T bytes=3] ~stripped~");
    EXPECT_EQ(render(CURLINFO_SSL_DATA_IN, "a b"), "receive [type=ssl_data T bytes=3] ~stripped~");
    EXPECT_EQ(render(CURLINFO_SSL_DATA_OUT, "a b"), "send [type=ssl_data T bytes=3] ~stripped~");
    EXPECT_EQ(render(CURLINFO_END, "a b"), "unknown [T bytes=3] a%20b");
}

TEST_F(VerboseLogMessage, HasSettingsOfTheirOwnForBodiesAndTLS) {
    setSettings(2, 3);
    EXPECT_EQ(render(CURLINFO_DATA_IN, "a b"), "receive [type=data T bytes=3] ~stripped~");
    EXPECT_EQ(render(CURLINFO_SSL_DATA_IN, "a b"), "receive [type=ssl_data T bytes=3] a%20b");
    setSettings(3, 2);
    EXPECT_EQ(render(CURLINFO_DATA_OUT, "a b"), "send [type=data T bytes=3] a%20b");
    EXPECT_EQ(render(CURLINFO_SSL_DATA_OUT, "a b"), "send [type=ssl_data T bytes=3] ~stripped~");
}

TEST_F(VerboseLogMessage, OnlyLooksAtTheContentBitOfOtherSettings) {
    for (const int setting : {0, 2, 6, 8}) {
        setSettings(setting, setting);
        EXPECT_EQ(render(CURLINFO_DATA_IN, "ab"), "receive [type=data T bytes=2] ~stripped~") << setting;
        EXPECT_EQ(render(CURLINFO_SSL_DATA_IN, "ab"), "receive [type=ssl_data T bytes=2] ~stripped~")
            << setting;
    }
    for (const int setting : {1, 3, 5, 7}) {
        setSettings(setting, setting);
        EXPECT_EQ(render(CURLINFO_DATA_IN, "ab"), "receive [type=data T bytes=2] ab") << setting;
        EXPECT_EQ(render(CURLINFO_SSL_DATA_IN, "ab"), "receive [type=ssl_data T bytes=2] ab") << setting;
    }
    setSettings(3, 4);
    EXPECT_EQ(render(CURLINFO_SSL_DATA_IN, "ab"), "receive [type=ssl_data T bytes=2] ~stripped~");
}

TEST_F(VerboseLogMessage, ShowsTheFirstFourOfTenBytes) {
    setSettings(3, 2);
    EXPECT_EQ(render(CURLINFO_DATA_IN, "a b/efghij", 4), "receive [type=data T bytes=10] a%20b%2F...");
}

TEST_F(VerboseLogMessage, MarksACutAfterTheStrippedTextToo) {
    setSettings(2, 2);
    EXPECT_EQ(render(CURLINFO_DATA_IN, "0123456789", 9), "receive [type=data T bytes=10] ~stripped~...");
    EXPECT_EQ(render(CURLINFO_DATA_IN, "0123456789", 10), "receive [type=data T bytes=10] ~stripped~");
    EXPECT_EQ(render(CURLINFO_SSL_DATA_OUT, "0123456789", 9),
              "send [type=ssl_data T bytes=10] ~stripped~...");
}

TEST_F(VerboseLogMessage, CutsHeadersAndTextsToo) {
    EXPECT_EQ(render(CURLINFO_TEXT, "0123456789", 4), "info [T] 0123...");
    EXPECT_EQ(render(CURLINFO_HEADER_IN, "0123456789", 4), "receive [type=header T] 0123...");
    EXPECT_EQ(render(CURLINFO_TEXT, "0123456789", 0), "info [T] ...");
    EXPECT_EQ(render(CURLINFO_TEXT, "0123456789", 10), "info [T] 0123456789");
    EXPECT_EQ(render(CURLINFO_TEXT, "", 0), "info [T] ");
    EXPECT_EQ(render(CURLINFO_TEXT, "0123456789", 4294967295U), "info [T] 0123456789");
}

TEST_F(VerboseLogMessage, TrimsWhiteSpaceAtTheEndAlone) {
    EXPECT_EQ(render(CURLINFO_TEXT, " \t text \t\r\n"), "info [T]  \t text");
    EXPECT_EQ(render(CURLINFO_HEADER_IN, "HTTP/1.1 200 OK\r\n"), "receive [type=header T] HTTP/1.1 200 OK");
    EXPECT_EQ(render(CURLINFO_TEXT, "text  more", 6), "info [T] text  ...");
    setSettings(3, 3);
    EXPECT_EQ(render(CURLINFO_DATA_IN, "a \n"), "receive [type=data T bytes=3] a%20%0A");
}

TEST_F(VerboseLogMessage, ReadsBytesAsLatin1) {
    EXPECT_EQ(render(CURLINFO_TEXT, "caf\xE9"), "info [T] café");
    EXPECT_EQ(render(CURLINFO_HEADER_IN, "X: \xC3\xA4"), "receive [type=header T] X: Ã¤");
    setSettings(3, 3);
    EXPECT_EQ(render(CURLINFO_DATA_IN, std::string_view("\0\x7F\xE9\xFF-_.~", 8)),
              "receive [type=data T bytes=8] %00%7F%C3%A9%C3%BF-_.~");
}

// Credentials

TEST_F(VerboseLogMessage, StripsTheValueOfAnAuthorizationHeader) {
    EXPECT_EQ(
        render(CURLINFO_HEADER_OUT, "GET / HTTP/1.1\r\nAuthorization: Basic c2VjcmV0\r\nAccept: */*\r\n\r\n"),
        "send [type=header T] GET / HTTP/1.1\r\nAuthorization: ~stripped~\nAccept: */*");
    EXPECT_EQ(render(CURLINFO_HEADER_IN, "Authorization: Basic c2VjcmV0\r\n"),
              "receive [type=header T] Authorization: ~stripped~");
}

TEST_F(VerboseLogMessage, StripsItInAnyCaseAndForAProxy) {
    EXPECT_EQ(render(CURLINFO_HEADER_OUT, "authorization: Bearer s\r\nA: b\r\n"),
              "send [type=header T] authorization: ~stripped~\nA: b");
    EXPECT_EQ(render(CURLINFO_HEADER_OUT, "AUTHORIZATION: Bearer s\r\nA: b\r\n"),
              "send [type=header T] AUTHORIZATION: ~stripped~\nA: b");
    EXPECT_EQ(render(CURLINFO_HEADER_OUT, "Proxy-Authorization: Basic s\r\nA: b\r\n"),
              "send [type=header T] Proxy-Authorization: ~stripped~\nA: b");
    EXPECT_EQ(render(CURLINFO_HEADER_OUT, "proxy-AuthoriZation: Basic s\r\nA: b\r\n"),
              "send [type=header T] proxy-AuthoriZation: ~stripped~\nA: b");
}

TEST_F(VerboseLogMessage, StripsEveryOccurrence) {
    EXPECT_EQ(render(CURLINFO_HEADER_OUT, "Proxy-Authorization: Basic p\r\nA: b\r\nAuthorization: Basic s\r\n"
                                          "authorization: Basic t\r\nC: d\r\n\r\n"),
              "send [type=header T] Proxy-Authorization: ~stripped~\nA: b\r\nAuthorization: ~stripped~\n"
              "authorization: ~stripped~\nC: d");
}

TEST_F(VerboseLogMessage, StripsItHoweverTheValueIsSetOff) {
    EXPECT_EQ(render(CURLINFO_HEADER_OUT, "Authorization:Basic s\r\nA: b"),
              "send [type=header T] Authorization:~stripped~\nA: b");
    EXPECT_EQ(render(CURLINFO_HEADER_OUT, "Authorization: \t Basic s\r\nA: b"),
              "send [type=header T] Authorization: \t ~stripped~\nA: b");
}

TEST_F(VerboseLogMessage, StripsToTheEndWhereNoLineBreakFollows) {
    EXPECT_EQ(render(CURLINFO_HEADER_OUT, "Authorization: Basic secret"),
              "send [type=header T] Authorization: ~stripped~");
    EXPECT_EQ(render(CURLINFO_HEADER_OUT, "Authorization: s"),
              "send [type=header T] Authorization: ~stripped~");
}

TEST_F(VerboseLogMessage, LeavesNothingOfACutValue) {
    EXPECT_EQ(render(CURLINFO_HEADER_OUT, "Authorization: Basic c2VjcmV0\r\nA: b\r\n", 24),
              "send [type=header T] Authorization: ~stripped~");
    EXPECT_EQ(render(CURLINFO_HEADER_OUT, "Authorization: Basic c2VjcmV0\r\nA: b\r\n", 35),
              "send [type=header T] Authorization: ~stripped~\nA: b...");
}

TEST_F(VerboseLogMessage, StripsNothingWhereThereIsNoValue) {
    EXPECT_EQ(render(CURLINFO_HEADER_OUT, "Authorization: "), "send [type=header T] Authorization:");
    EXPECT_EQ(render(CURLINFO_HEADER_OUT, "Authorization: \nA: b"),
              "send [type=header T] Authorization: \nA: b");
    EXPECT_EQ(render(CURLINFO_HEADER_OUT, "X-Authorized: yes"), "send [type=header T] X-Authorized: yes");
}

TEST_F(VerboseLogMessage, StripsItInInformationalTexts) {
    EXPECT_EQ(render(CURLINFO_TEXT, "h2h3 [authorization: Basic c2VjcmV0]\n"),
              "info [T] h2h3 [authorization: ~stripped~");
    EXPECT_EQ(render(CURLINFO_TEXT, "[HTTP/2] [1] [proxy-authorization: Basic s]\n"),
              "info [T] [HTTP/2] [1] [proxy-authorization: ~stripped~");
}

/// libcurl may have to send a long request in several pieces, and report the later ones as headers or as
/// data.
TEST_F(VerboseLogMessage, StripsTheAuthorizationOfARequestSentInPieces) {
    setSettings(3, 2);
    const std::string_view request = "GET / HTTP/1.1\r\nA: b\r\nAuthorization: ########\r\nC: d\r\n\r\n";
    for (const curl_infotype later : {CURLINFO_DATA_OUT, CURLINFO_HEADER_OUT}) {
        for (std::size_t cut = 1; cut < request.size(); ++cut) {
            request_->setAsyncInfo(false, CURLE_OK);
            debug(CURLINFO_HEADER_OUT, request.substr(0, cut));
            debug(CURLINFO_TEXT, "in between");
            debug(later, request.substr(cut));
            debug(CURLINFO_DATA_OUT, "Authorization: #");
            const std::vector<std::string> texts = getTexts();
            ASSERT_EQ(texts.size(), 4U);
            const std::string shown = texts[0] + texts[2];
            EXPECT_THAT(shown, testing::HasSubstr("~stripped~")) << cut;
            EXPECT_THAT(shown, Not(testing::HasSubstr("#"))) << cut;
            EXPECT_THAT(shown, Not(testing::HasSubstr("%23"))) << cut;
            EXPECT_EQ(texts[3], "Authorization%3A%20%23") << cut;
        }
    }
}

TEST_F(VerboseLogMessage, ShowsTheRestOfARequestSentInPiecesWithoutItsCredentials) {
    setSettings(3, 2);
    debug(CURLINFO_HEADER_OUT, "GET / HTTP/1.1\r\nAuthorization: Basic c2Vj");
    debug(CURLINFO_DATA_OUT, "cmV0\r\nProxy-Authorization: Basic s\r\nA: ");
    debug(CURLINFO_DATA_OUT, "b\r\n\r");
    debug(CURLINFO_DATA_OUT, "\n");
    debug(CURLINFO_DATA_OUT, "Authorization: body");
    EXPECT_THAT(
        getLog(),
        ElementsAre("send [type=header logTime=2019-04-01T09:05:07.250] GET / HTTP/1.1\r\n"
                    "Authorization: ~stripped~",
                    "send [type=data logTime=2019-04-01T09:05:07.250 bytes=39] "
                    "~stripped~%0AProxy-Authorization%3A%20~stripped~%0AA%3A%20",
                    "send [type=data logTime=2019-04-01T09:05:07.250 bytes=4] b%0D%0A%0D",
                    "send [type=data logTime=2019-04-01T09:05:07.250 bytes=1] %0A",
                    "send [type=data logTime=2019-04-01T09:05:07.250 bytes=19] Authorization%3A%20body"));
    EXPECT_THAT(getLog(3), Not(testing::Contains(testing::HasSubstr("cmV"))));
}

TEST_F(VerboseLogMessage, StripsThePasswordAndAccountOfAnFTPLogin) {
    request_->setURL("ftp://example.org/");
    EXPECT_EQ(render(CURLINFO_HEADER_OUT, "USER someone\r\n"), "send [type=header T] USER someone");
    EXPECT_EQ(render(CURLINFO_HEADER_OUT, "PASS se cret\r\n"), "send [type=header T] PASS ~stripped~");
    EXPECT_EQ(render(CURLINFO_HEADER_OUT, "pass secret\r\n"), "send [type=header T] pass ~stripped~");
    EXPECT_EQ(render(CURLINFO_HEADER_OUT, "ACCT secret\r\n"), "send [type=header T] ACCT ~stripped~");
    EXPECT_EQ(render(CURLINFO_HEADER_OUT, "PASS secret\r\n", 8), "send [type=header T] PASS ~stripped~");
    EXPECT_EQ(render(CURLINFO_HEADER_OUT, "PASS \r\n"), "send [type=header T] PASS");
    EXPECT_EQ(render(CURLINFO_HEADER_OUT, "PASV\r\n"), "send [type=header T] PASV");
    EXPECT_EQ(render(CURLINFO_HEADER_IN, "PASS on\r\n"), "receive [type=header T] PASS on");
}

TEST_F(VerboseLogMessage, LeavesTheStartOfTLSOnAnFTPConnection) {
    request_->setURL("ftp://example.org/");
    debug(CURLINFO_HEADER_OUT, "AUTH SSL\r\n");
    debug(CURLINFO_HEADER_IN, "234 AUTH SSL successful\r\n");
    debug(CURLINFO_HEADER_OUT, "USER someone\r\n");
    EXPECT_THAT(getTexts(), ElementsAre("AUTH SSL", "234 AUTH SSL successful", "USER someone"));
}

TEST_F(VerboseLogMessage, StripsTheWholeExchangeOfAnSMTPLogin) {
    request_->setURL("smtp://example.org/");
    debug(CURLINFO_HEADER_OUT, "AUTH LOGIN\r\n");
    debug(CURLINFO_HEADER_IN, "334 VXNlcm5hbWU6\r\n");
    debug(CURLINFO_HEADER_OUT, "dXNlcg==\r\n");
    debug(CURLINFO_TEXT, "not a reply\n");
    debug(CURLINFO_HEADER_IN, "334 UGFzc3dvcmQ6\r\n");
    debug(CURLINFO_HEADER_OUT, "c2VjcmV0\r\n");
    debug(CURLINFO_HEADER_IN, "535 5.7.8 no\r\n");
    debug(CURLINFO_HEADER_OUT, "auth plain AHVzZXIAc2VjcmV0\r\n");
    debug(CURLINFO_HEADER_IN, "235 2.7.0 welcome\r\n");
    debug(CURLINFO_HEADER_OUT, "MAIL FROM:<a@example.org>\r\n");
    const auto expected = ElementsAre(
        "AUTH LOGIN", "334 VXNlcm5hbWU6", "~stripped~", "not a reply", "334 UGFzc3dvcmQ6", "~stripped~",
        "535 5.7.8 no", "auth plain ~stripped~", "235 2.7.0 welcome", "MAIL FROM:<a@example.org>");
    EXPECT_THAT(getTexts(), expected);
    EXPECT_THAT(getTexts(), expected);
}

TEST_F(VerboseLogMessage, StripsTheAuthorizationAtTheProxyOfAnFTPTransfer) {
    request_->setURL("ftp://example.org/");
    EXPECT_EQ(render(CURLINFO_HEADER_OUT,
                     "CONNECT example.org:21 HTTP/1.1\r\nProxy-Authorization: Basic s\r\n\r\n"),
              "send [type=header T] CONNECT example.org:21 HTTP/1.1\r\nProxy-Authorization: ~stripped~");
}

TEST_F(VerboseLogMessage, ShowsTheHeadersOfHTTPThatLookLikeALogin) {
    EXPECT_EQ(render(CURLINFO_HEADER_OUT, "PASS /path HTTP/1.1\r\n"),
              "send [type=header T] PASS /path HTTP/1.1");
    EXPECT_EQ(render(CURLINFO_HEADER_OUT, "AUTH a b\r\n"), "send [type=header T] AUTH a b");
}

TEST_F(VerboseLogMessage, ShowsBodiesAsTheyAre) {
    setSettings(3, 3);
    EXPECT_EQ(render(CURLINFO_DATA_OUT, "Authorization: s"),
              "send [type=data T bytes=16] Authorization%3A%20s");
}

} // namespace

} // namespace vantra::test
