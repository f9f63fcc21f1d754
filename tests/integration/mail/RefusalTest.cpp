#include "MailServer.h"

#include "support/Ports.h"

#include <gmock/gmock.h>

using kel::P;
using kel::String;
using testing::IsEmpty;
using vantra::CCURLError;
using vantra::CSMTPClient;
using vantra::CSMTPParams;

namespace {

constexpr auto unencrypted = CSMTPParams::ConnectTypeUnencrypted;

/// A mail that the server refuses, and what is known of the refusal.
struct Refusal {
    std::string name;
    std::string from;
    std::vector<std::string> recipients;
    std::string text;
    int code;
    int responseCode;
    std::string serverMessage;

    friend std::ostream& operator<<(std::ostream& stream, const Refusal& refusal) {
        return stream << refusal.name;
    }
};

const Refusal refusals[] = {
    {"Sender",
     "badsender@example.org",
     {"joe@example.org"},
     "x",
     CURLE_SEND_ERROR,
     553,
     "553 5.1.8 sender refused"},
    {"Recipient",
     "jane@example.org",
     {"reject@example.org"},
     "x",
     CURLE_SEND_ERROR,
     550,
     "550 5.1.1 has that name"},
    {"SecondRecipient",
     "jane@example.org",
     {"joe@example.org", "reject@example.org"},
     "x",
     CURLE_SEND_ERROR,
     550,
     "550 5.1.1 has that name"},
    {"RecipientForNow",
     "jane@example.org",
     {"tempfail@example.org"},
     "x",
     CURLE_SEND_ERROR,
     451,
     "451 4.3.0 try later"},
    {"Content",
     "jane@example.org",
     {"joe@example.org"},
     "REJECT-DATA",
     CURLE_WEIRD_SERVER_REPLY,
     554,
     "554 5.6.0 content refused"},
};

class ARefused : public Mail, public testing::WithParamInterface<Refusal> {
protected:
    static void sendRefused(CSMTPClient& client) {
        kel::TArray<String> recipients;
        for (const std::string& recipient : GetParam().recipients) recipients.push_back(String(recipient));
        client.sendMail(String(GetParam().from), recipients, *makeBuffer(GetParam().text + "\r\n"));
    }

    static void expectRefusal(const CCURLError& error) {
        EXPECT_EQ(error.getCodeDomain(), "curl");
        EXPECT_EQ(error.getCode(), GetParam().code);
        EXPECT_EQ(error.getResponseCodeDomain(), "smtp");
        EXPECT_EQ(error.getResponseCode(), GetParam().responseCode);
        EXPECT_EQ(error.getServerMessage().toUTF8(), GetParam().serverMessage);
        EXPECT_EQ(error.getURL(), "smtp://127.0.0.1:" + String::fromInt(mailServer().ports().plain));
        EXPECT_EQ(error.getHTTPStatusLine(), "");
        EXPECT_EQ(error.getHTTPMethod(), "");
    }
};

TEST_P(ARefused, MailFailsWithTheServersCodeAndTheLineByWhichItRefused) {
    const P<CSMTPClient> client = makeClient(unencrypted, false);
    expectRefusal(errorOf([&] { sendRefused(*client); }));
    EXPECT_THAT(takeMails(), IsEmpty());
}

TEST_P(ARefused, MailDoesNotKeepTheClientFromSendingTheNextOne) {
    const P<CSMTPClient> client = makeClient(unencrypted, false);
    for (int i = 0; i < 2; ++i) {
        expectRefusal(errorOf([&] { sendRefused(*client); }));
        sendMail(*client, "next\r\n");
        EXPECT_EQ(takeMails().at(0).bytes, "next\r\n");
    }
}

TEST_P(ARefused, MailDoesNotKeepTheClientFromTestingTheConnection) {
    const P<CSMTPClient> client = makeClient(unencrypted, false);
    expectRefusal(errorOf([&] { sendRefused(*client); }));
    client->testConnection();
    EXPECT_THAT(takeMails(), IsEmpty());
}

INSTANTIATE_TEST_SUITE_P(ByItsServer, ARefused, testing::ValuesIn(refusals),
                         [](const auto& param) { return param.param.name; });

/// A client that cannot get as far as a mail, by what stands in its way.
void expectNoWay(const CSMTPParams& params, CURLcode code, int responseCode,
                 const std::string& serverMessage) {
    const P<CSMTPClient> client = new CSMTPClient(params);
    for (int i = 0; i < 2; ++i) {
        for (const auto& error :
             {errorOf([&] { sendMail(*client, "x\r\n"); }), errorOf([&] { client->testConnection(); })}) {
            EXPECT_EQ(error.getCodeDomain(), "curl");
            EXPECT_EQ(error.getCode(), code) << error.getMessage();
            EXPECT_EQ(error.getResponseCodeDomain(), "smtp");
            EXPECT_EQ(error.getResponseCode(), responseCode);
            EXPECT_EQ(error.getServerMessage().toUTF8(), serverMessage);
        }
    }
    EXPECT_THAT(mailServer().takeMails(), IsEmpty());
}

TEST_F(Mail, IsNotSentAfterARefusedLogin) {
    for (const auto type : {unencrypted, CSMTPParams::ConnectTypeSSL, CSMTPParams::ConnectTypeStartTLS}) {
        const CSMTPParams params = makeParams(type, false);
        expectNoWay(CSMTPParams("127.0.0.1", params.getPort(), type, "user", "wrong"), CURLE_LOGIN_DENIED,
                    535, "535 5.7.8 Authentication credentials invalid");
    }
}

TEST_F(Mail, IsNotSentWhereSTARTTLSIsNotOffered) {
    // The last line of the reply to EHLO, in which STARTTLS is missing.
    expectNoWay(
        CSMTPParams("127.0.0.1", mailServer().ports().plain, CSMTPParams::ConnectTypeStartTLS, "", ""),
        CURLE_USE_SSL_FAILED, 250, "250 HELP");
}

TEST_F(Mail, IsNotSentWithoutTheLoginThatTheServerWants) {
    const P<CSMTPClient> client = makeClient(CSMTPParams::ConnectTypeStartTLS, false);
    const auto error = errorOf([&] { sendMail(*client, "x\r\n"); });
    EXPECT_EQ(error.getCode(), CURLE_SEND_ERROR);
    EXPECT_EQ(error.getResponseCode(), 530);
    EXPECT_EQ(error.getServerMessage(), "530 5.7.0 Authentication required");
    client->testConnection();
    EXPECT_THAT(takeMails(), IsEmpty());
}

TEST_F(Mail, IsNotSentWithoutTLSWhereTheServerWantsIt) {
    const int port = mailServer().ports().starttls;
    const P<CSMTPClient> client =
        new CSMTPClient(CSMTPParams("127.0.0.1", port, unencrypted, "user", "secret"));
    const auto error = errorOf([&] { sendMail(*client, "x\r\n"); });
    EXPECT_EQ(error.getCode(), CURLE_SEND_ERROR);
    EXPECT_EQ(error.getResponseCode(), 530);
    EXPECT_EQ(error.getServerMessage(), "530 Must issue a STARTTLS command first");
    EXPECT_THAT(takeMails(), IsEmpty());
}

TEST_F(Mail, IsNotSentWithTLSToAPortThatSpeaksNone) {
    const P<CSMTPClient> client = new CSMTPClient(
        CSMTPParams("127.0.0.1", mailServer().ports().plain, CSMTPParams::ConnectTypeSSL, "", ""));
    const auto error = errorOf([&] { client->testConnection(); });
    EXPECT_EQ(error.getCode(), CURLE_SSL_CONNECT_ERROR);
    EXPECT_EQ(error.getResponseCode(), 0);
    EXPECT_EQ(error.getURL(), "smtps://127.0.0.1:" + String::fromInt(mailServer().ports().plain));
}

TEST_F(Mail, IsNotSentWithoutAServer) {
    const testsupport::RefusedPort refused;
    expectNoWay(CSMTPParams("127.0.0.1", refused.port(), unencrypted, "", ""), CURLE_COULDNT_CONNECT, 0, "");
}

TEST_F(Mail, IsRefusedWhenItIsLargerThanTheServerTakes) {
    const P<CSMTPClient> client = makeClient(unencrypted, false);
    std::string message;
    while (message.size() <= (32 << 20)) message += std::string(900, 'a') + "\r\n";
    const auto error = errorOf([&] { sendMail(*client, message); });
    EXPECT_EQ(error.getResponseCode(), 552);
    EXPECT_EQ(error.getServerMessage(), "552 Error: Too much mail data");
    EXPECT_THAT(takeMails(), IsEmpty());
    sendMail(*client, "small\r\n");
    EXPECT_EQ(takeMails().at(0).bytes, "small\r\n");
}

} // namespace
