#include "vantra/SMTPClient.h"

#include "Bytes.h"
#include "CurlRecorder.h"
#include "Thrown.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>
#include <optional>

namespace vantra::test {

namespace {

using kel::CMemoryInStream;
using kel::P;
using kel::String;
using kel::TArray;
using testing::Contains;
using testing::ElementsAre;
using testing::ElementsAreArray;
using testing::Not;
using testing::StartsWith;

using Params = CSMTPParams;
using Calls = std::vector<std::string>;

/// The calls behind the last one of a kind.
Calls callsBehind(const Calls& calls, const std::string& last) {
    const auto found = std::find(calls.rbegin(), calls.rend(), last);
    return {found.base(), calls.end()};
}

const Calls resetOptionCalls{"CONNECT_ONLY = 0", "UPLOAD = 0", "MAIL_FROM = \"\""};

Calls concat(std::initializer_list<Calls> lists) {
    Calls all;
    for (const Calls& list : lists) all.insert(all.end(), list.begin(), list.end());
    return all;
}

class SMTPClient : public testing::Test {
protected:
    /// Has the next transfers read all that there is to send and end with a result.
    void playTransfers(CURLcode result) {
        curl_.playTransfer([this, result](const LibcurlSide& curl) {
            std::array<char, 100> buffer{};
            sent_.emplace(buffer.data(), curl.read(buffer.data(), 1, buffer.size()));
            return result;
        });
    }

    static Params makeParams(int port, Params::ConnectType type, const String& login = "") {
        return {"mail.example.org", port, type, login, "s3cret"};
    }

    /// What a client tells libcurl when it is made, behind what a request that is reset tells.
    Calls initialCalls(const Params& params) {
        curl_.takeCalls();
        const P<CSMTPClient> client = new CSMTPClient(params);
        return callsBehind(curl_.takeCalls(), "DEBUGDATA = object");
    }

    CurlRecorder curl_;
    std::optional<std::string> sent_;
};

TEST_F(SMTPClient, WithSTARTTLSAndNoLoginHasNoCredentials) {
    EXPECT_THAT(initialCalls(makeParams(587, Params::ConnectTypeStartTLS)),
                ElementsAre("URL = \"smtp://mail.example.org:587\"", "USE_SSL = 3", "SSL_VERIFYPEER = 0"));
}

TEST_F(SMTPClient, WithTLSFromTheStartHasTheSchemeSmtps) {
    EXPECT_THAT(initialCalls(makeParams(465, Params::ConnectTypeSSL)),
                ElementsAre("URL = \"smtps://mail.example.org:465\"", "SSL_VERIFYPEER = 0"));
}

TEST_F(SMTPClient, WithoutTLSDoesNotAskForIt) {
    EXPECT_THAT(initialCalls(makeParams(25, Params::ConnectTypeUnencrypted)),
                ElementsAre("URL = \"smtp://mail.example.org:25\"", "SSL_VERIFYPEER = 0"));
}

TEST_F(SMTPClient, WithALoginTellsNameAndPassword) {
    EXPECT_THAT(initialCalls(makeParams(587, Params::ConnectTypeStartTLS, "jane")),
                ElementsAre("URL = \"smtp://mail.example.org:587\"", "USERNAME = \"jane\"",
                            "PASSWORD = \"s3cret\"", "USE_SSL = 3", "SSL_VERIFYPEER = 0"));
}

TEST_F(SMTPClient, OfDefaultParametersHasThePortZero) {
    EXPECT_THAT(initialCalls(Params()), ElementsAre("URL = \"smtp://:0\"", "SSL_VERIFYPEER = 0"));
}

TEST_F(SMTPClient, ResetsItsRequestFirst) {
    const P<CSMTPClient> client = new CSMTPClient(makeParams(25, Params::ConnectTypeUnencrypted));
    EXPECT_THAT(curl_.takeCalls(), Contains("reset"));
}

TEST_F(SMTPClient, SendsAMailAndThenSendsNothingMore) {
    const P<CSMTPClient> client = new CSMTPClient(makeParams(25, Params::ConnectTypeUnencrypted));
    curl_.takeCalls();
    playTransfers(CURLE_OK);
    client->sendMail("jane@example.org", {"joe@example.org", "j\u00fcrgen@example.org"},
                     *makeBuffer("Subject: x\r\n\r\nhello"));
    EXPECT_THAT(curl_.takeCalls(),
                ElementsAreArray(
                    concat({resetOptionCalls,
                            {"CONNECT_ONLY = 0", "MAIL_FROM = \"jane@example.org\"", "UPLOAD = 1",
                             "MAIL_RCPT = [\"joe@example.org\", \"j\u00fcrgen@example.org\"]", "perform"},
                            resetOptionCalls})));
    EXPECT_EQ(sent_, "Subject: x\r\n\r\nhello");
}

TEST_F(SMTPClient, TakesAMessageThatIsNotOnTheHeap) {
    const P<CSMTPClient> client = new CSMTPClient(makeParams(25, Params::ConnectTypeUnencrypted));
    playTransfers(CURLE_OK);
    const ByteBuffer message = *makeBuffer("on the stack");
    client->sendMail("", {"joe@example.org"}, message);
    EXPECT_EQ(sent_, "on the stack");
}

TEST_F(SMTPClient, SendsAnEmptyMessage) {
    const P<CSMTPClient> client = new CSMTPClient(makeParams(25, Params::ConnectTypeUnencrypted));
    playTransfers(CURLE_OK);
    client->sendMail("jane@example.org", {"joe@example.org"}, ByteBuffer());
    EXPECT_EQ(sent_, "");
}

TEST_F(SMTPClient, TestsTheConnectionWithoutSending) {
    const P<CSMTPClient> client = new CSMTPClient(makeParams(25, Params::ConnectTypeUnencrypted));
    curl_.takeCalls();
    playTransfers(CURLE_OK);
    client->testConnection();
    EXPECT_THAT(curl_.takeCalls(),
                ElementsAreArray(concat(
                    {resetOptionCalls, {"CONNECT_ONLY = 1", "UPLOAD = 0", "perform"}, resetOptionCalls})));
    EXPECT_EQ(sent_, "");
}

TEST_F(SMTPClient, TestsTheConnectionWithoutUploadAndSenderAfterAMailThatFailed) {
    const P<CSMTPClient> client = new CSMTPClient(makeParams(25, Params::ConnectTypeUnencrypted));
    playTransfers(CURLE_SEND_ERROR);
    EXPECT_EQ(thrownBy([&] { client->sendMail("jane@example.org", {"joe@example.org"}, *makeBuffer("x")); }),
              curlError(CURLE_SEND_ERROR, "",
                        {{"responseCodeDomain", "smtp"}, {"url", "smtp://mail.example.org:25"}}));
    EXPECT_THAT(callsBehind(curl_.takeCalls(), "perform"), ElementsAreArray(resetOptionCalls));
    playTransfers(CURLE_OK);
    client->testConnection();
    EXPECT_THAT(curl_.takeCalls(),
                ElementsAreArray(concat(
                    {resetOptionCalls, {"CONNECT_ONLY = 1", "UPLOAD = 0", "perform"}, resetOptionCalls})));
    EXPECT_EQ(sent_, "");
}

TEST_F(SMTPClient, ResetsItsOptionsAfterATestThatFailed) {
    const P<CSMTPClient> client = new CSMTPClient(makeParams(25, Params::ConnectTypeUnencrypted));
    playTransfers(CURLE_COULDNT_CONNECT);
    EXPECT_EQ(thrownBy([&] { client->testConnection(); }),
              curlError(CURLE_COULDNT_CONNECT, "",
                        {{"responseCodeDomain", "smtp"}, {"url", "smtp://mail.example.org:25"}}));
    EXPECT_THAT(callsBehind(curl_.takeCalls(), "perform"), ElementsAreArray(resetOptionCalls));
}

TEST_F(SMTPClient, KeepsACopyOfItsParameters) {
    Params params = makeParams(25, Params::ConnectTypeUnencrypted);
    const P<CSMTPClient> client = new CSMTPClient(params);
    params = makeParams(465, Params::ConnectTypeSSL);
    curl_.takeCalls();
    playTransfers(CURLE_OK);
    client->testConnection();
    EXPECT_THAT(curl_.takeCalls(), Not(Contains(StartsWith("URL"))));
}

TEST_F(SMTPClient, SendsNothingWithoutRecipients) {
    const P<CSMTPClient> client = new CSMTPClient(makeParams(25, Params::ConnectTypeUnencrypted));
    curl_.takeCalls();
    EXPECT_EQ(thrownBy([&] { client->sendMail("jane@example.org", {}, *makeBuffer("x")); }),
              invalidArgError("CSMTPClient::sendMail", "no recipients given"));
    EXPECT_THAT(curl_.takeCalls(), ElementsAre());
}

TEST_F(SMTPClient, SendsNothingToARecipientWithANUL) {
    const P<CSMTPClient> client = new CSMTPClient(makeParams(25, Params::ConnectTypeUnencrypted));
    curl_.takeCalls();
    const String recipient = String(L"joe@example.org\0.example.net", 28);
    EXPECT_EQ(thrownBy([&] {
                  client->sendMail("a@b.c", {"d@e.f", recipient}, *makeBuffer("x"));
              }),
              invalidArgError("CSMTPClient::sendMail", "recipient contains a NUL character"));
    EXPECT_THAT(curl_.takeCalls(), ElementsAre());
}

TEST_F(SMTPClient, SendsNothingFromASenderWithANUL) {
    const P<CSMTPClient> client = new CSMTPClient(makeParams(25, Params::ConnectTypeUnencrypted));
    curl_.takeCalls();
    const String from = String(L"a@b.c\0x", 7);
    EXPECT_EQ(thrownBy([&] { client->sendMail(from, {"d@e.f"}, *makeBuffer("x")); }),
              invalidArgError("CSMTPClient::sendMail", "sender contains a NUL character"));
    EXPECT_THAT(curl_.takeCalls(), ElementsAre());
}

TEST_F(SMTPClient, IsNotMadeOfAHostOrALoginWithANUL) {
    const String withNUL = String(L"mail\0x", 6);
    for (const Params& params : {Params(withNUL, 25, Params::ConnectTypeUnencrypted, "", ""),
                                 Params("h", 25, Params::ConnectTypeUnencrypted, withNUL, ""),
                                 Params("h", 25, Params::ConnectTypeUnencrypted, "jane", withNUL)}) {
        EXPECT_EQ(thrownBy([&] { const P<CSMTPClient> client = new CSMTPClient(params); }),
                  invalidArgError("CNetRequest::setOptionString", "text contains a NUL character"));
    }
}

TEST_F(SMTPClient, DoesNotLookAtThePasswordWithoutALogin) {
    const String withNUL = String(L"s\0", 2);
    EXPECT_THAT(initialCalls(Params("h", 25, Params::ConnectTypeUnencrypted, "", withNUL)),
                ElementsAre("URL = \"smtp://h:25\"", "SSL_VERIFYPEER = 0"));
}

TEST_F(SMTPClient, MakesAnyRequestOneThatSendsAMail) {
    const P<CNetRequest> request = new CNetRequest();
    request->setHTTPMethod("POST");
    curl_.takeCalls();
    CSMTPClient::makeSendMailRequest(*request, makeParams(587, Params::ConnectTypeStartTLS, "jane"),
                                     "jane@example.org", {"joe@example.org"},
                                     P<CMemoryInStream>(new CMemoryInStream(makeBuffer("hello"))));
    const Calls calls = curl_.takeCalls();
    EXPECT_EQ(calls.front(), "reset");
    EXPECT_THAT(callsBehind(calls, "DEBUGDATA = object"),
                ElementsAreArray(concat({{"URL = \"smtp://mail.example.org:587\"", "USERNAME = \"jane\"",
                                          "PASSWORD = \"s3cret\"", "USE_SSL = 3", "SSL_VERIFYPEER = 0"},
                                         resetOptionCalls,
                                         {"CONNECT_ONLY = 0", "MAIL_FROM = \"jane@example.org\"",
                                          "UPLOAD = 1", "MAIL_RCPT = [\"joe@example.org\"]"}})));
    playTransfers(CURLE_OK);
    request->perform();
    EXPECT_EQ(sent_, "hello");
    // The request is the caller's: it may be performed again.
    request->perform();
    EXPECT_EQ(sent_, "hello");
}

TEST_F(SMTPClient, MakesARequestOfTheStreamThatTheRequestAlreadyHas) {
    const P<CNetRequest> request = new CNetRequest();
    request->setSendDataStream(P<CMemoryInStream>(new CMemoryInStream(makeBuffer("hello"))));
    CSMTPClient::makeSendMailRequest(*request, makeParams(25, Params::ConnectTypeUnencrypted), "a@b.c",
                                     {"d@e.f"}, request->getSendDataStream().get());
    playTransfers(CURLE_OK);
    request->perform();
    EXPECT_EQ(sent_, "hello");
}

TEST_F(SMTPClient, LeavesARequestAloneThatCannotBecomeAMail) {
    const P<CNetRequest> request = new CNetRequest();
    request->setURL("http://example.org/");
    curl_.takeCalls();
    const P<CMemoryInStream> data = new CMemoryInStream(makeBuffer("hello"));
    const Params params = makeParams(25, Params::ConnectTypeUnencrypted);
    const std::string function = "CSMTPClient::makeSendMailRequest";
    EXPECT_EQ(thrownBy([&] { CSMTPClient::makeSendMailRequest(*request, params, "a@b.c", {}, data); }),
              invalidArgError(function, "no recipients given"));
    const String withNUL = String(L"a\0", 2);
    EXPECT_EQ(thrownBy([&] { CSMTPClient::makeSendMailRequest(*request, params, withNUL, {"d@e.f"}, data); }),
              invalidArgError(function, "sender contains a NUL character"));
    const TArray<String> recipients{withNUL};
    EXPECT_EQ(
        thrownBy([&] { CSMTPClient::makeSendMailRequest(*request, params, "a@b.c", recipients, data); }),
        invalidArgError(function, "recipient contains a NUL character"));
    EXPECT_EQ(
        thrownBy([&] { CSMTPClient::makeSendMailRequest(*request, params, "a@b.c", {"d@e.f"}, nullptr); }),
        invalidArgError(function, "data must not be null"));
    EXPECT_THAT(curl_.takeCalls(), ElementsAre());
    EXPECT_EQ(request->getURL(), "http://example.org/");
}

} // namespace

} // namespace vantra::test
