#include "MailServer.h"

#include <gmock/gmock.h>

using kel::P;
using testing::IsEmpty;
using testing::StartsWith;
using vantra::CSMTPClient;
using vantra::CSMTPParams;

namespace {

struct Connection {
    CSMTPParams::ConnectType type;
    bool withLogin;
};

std::ostream& operator<<(std::ostream& stream, const Connection& connection) {
    return stream << CSMTPParams::connectTypeToString(connection.type)
                  << (connection.withLogin ? " with a login" : "");
}

class EveryConnection : public Mail, public testing::WithParamInterface<Connection> {};

TEST_P(EveryConnection, CarriesAMail) {
    const auto [type, withLogin] = GetParam();
    sendMail(*makeClient(type, withLogin), "hello\r\n");
    const auto mails = takeMails();
    ASSERT_EQ(mails.size(), 1U);
    EXPECT_EQ(mails[0].bytes, "hello\r\n");
    EXPECT_EQ(mails[0].login, withLogin ? "user" : "");
    if (type == CSMTPParams::ConnectTypeUnencrypted) {
        EXPECT_EQ(mails[0].tlsVersion, "");
    } else {
        EXPECT_THAT(mails[0].tlsVersion, StartsWith("TLSv1."));
    }
}

TEST_P(EveryConnection, IsTestedWithoutAMail) {
    const P<CSMTPClient> client = makeClient(GetParam().type, GetParam().withLogin);
    client->testConnection();
    client->testConnection();
    EXPECT_THAT(takeMails(), IsEmpty());
    sendMail(*client, "hello\r\n");
    client->testConnection();
    sendMail(*client, "again\r\n");
    const auto mails = takeMails();
    ASSERT_EQ(mails.size(), 2U);
    EXPECT_EQ(mails[0].bytes, "hello\r\n");
    EXPECT_EQ(mails[1].bytes, "again\r\n");
}

INSTANTIATE_TEST_SUITE_P(OfAClient, EveryConnection,
                         testing::Values(Connection{CSMTPParams::ConnectTypeUnencrypted, false},
                                         Connection{CSMTPParams::ConnectTypeUnencrypted, true},
                                         Connection{CSMTPParams::ConnectTypeSSL, false},
                                         Connection{CSMTPParams::ConnectTypeSSL, true},
                                         Connection{CSMTPParams::ConnectTypeStartTLS, true}));

/// A server whose certificate names another host.
class Stranger : public Mail {
protected:
    static CSMTPParams makeStrangersParams() {
        static const testsupport::SmtpServer server({"DNS:elsewhere.example"});
        return {"127.0.0.1", server.ports().tls, CSMTPParams::ConnectTypeSSL, "", ""};
    }
};

TEST_F(Stranger, IsRefusedSinceNobodyNeedsToVouchForACertificateButItMustNameTheHost) {
    const P<CSMTPClient> client = new CSMTPClient(makeStrangersParams());
    const auto error = errorOf([&] { client->testConnection(); });
    EXPECT_EQ(error.getCodeDomain(), "curl");
    EXPECT_EQ(error.getCode(), CURLE_PEER_FAILED_VERIFICATION);
    EXPECT_EQ(error.getResponseCode(), 0);
}

} // namespace
