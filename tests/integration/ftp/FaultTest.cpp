#include "FTPFixture.h"

#include "support/Ports.h"
#include "support/ScriptedFtpServer.h"

using kel::P;
using kel::String;
using testing::HasSubstr;
using testsupport::FtpServer;
using testsupport::ScriptedFtpServer;
using vantra::CCURLError;
using vantra::CFTPClient;
using vantra::CNetRequest;

namespace {

class FTPFault : public OverFTP {};

FOR_ALL_PEERS(FTPFault);

TEST_P(FTPFault, IsALoginThatIsRefused) {
    const CTestClient client(GetParam(), "wrong");
    const CCURLError error = errorOf([&] { static_cast<void>(client.listDir(*request_, at(""))); });
    EXPECT_EQ(error.getCode(), CURLE_LOGIN_DENIED);
    EXPECT_EQ(error.getResponseCodeDomain(), "ftp");
    EXPECT_EQ(error.getResponseCode(), 530);
    EXPECT_EQ(error.getParams().lookup("responseCodeDomain"), "ftp");
    EXPECT_EQ(error.getParams().lookup("responseCode"), "530");
}

TEST_P(FTPFault, IsAServerWithAnotherAuthoritysCertificate) {
    if (GetParam().security == testsupport::FtpSecurity::none) return;
    testsupport::CertificateAuthority stranger;
    client_->prepareListDirRequest(*request_, at(""));
    request_->setRootCertBundlePath(String(stranger.caFile()));
    EXPECT_EQ(performForError().getCode(), CURLE_PEER_FAILED_VERIFICATION);
}

/// Tests that need no TLS of the client, with both makes of servers.
class FTPPlainFault : public OverFTP {};

FOR_PLAIN_PEERS(FTPPlainFault);

TEST_P(FTPPlainFault, IsTLSThatIsRequiredAndNotOffered) {
    const CFTPClient client(String(server().host(testsupport::FtpSecurity::none)),
                            String(FtpServer::userName()), String(FtpServer::password()),
                            CFTPClient::ConnectExplicitTLS);
    client.prepareListDirRequest(*request_, at(""));
    const CCURLError error = performForError();
    EXPECT_EQ(error.getCode(), CURLE_USE_SSL_FAILED);
    EXPECT_EQ(error.getResponseCodeDomain(), "ftp");
    EXPECT_EQ(error.getResponseCode(), 500);
}

TEST_P(FTPPlainFault, IsImplicitTLSWhereTheServerSpeaksFirst) {
    const CFTPClient client(String(server().host(testsupport::FtpSecurity::none)),
                            String(FtpServer::userName()), String(FtpServer::password()),
                            CFTPClient::ConnectImplicitTLS);
    client.prepareListDirRequest(*request_, at(""));
    EXPECT_EQ(performForError().getCode(), CURLE_SSL_CONNECT_ERROR);
}

TEST_P(FTPPlainFault, IsNoLongerThereInTheNextTransfer) {
    writeFile("/f", "content");
    client_->prepareDownloadRequest(*request_, at("/none"), 0, -1);
    EXPECT_EQ(performForError().getResponseCode(), 550);
    client_->prepareDownloadRequest(*request_, at("/f"), 0, -1);
    request_->perform();
    EXPECT_EQ(getBody(*request_), "content");
}

class ScriptedFTPFault : public testing::Test {
protected:
    CCURLError listForError() {
        client_.prepareListDirRequest(*request_, "/d");
        try {
            request_->perform();
        } catch (const CCURLError& error) {
            EXPECT_EQ(error.getResponseCodeDomain(), "ftp");
            EXPECT_EQ(error.getURL(), "ftp://" + String(server_.host()) + "/d/");
            return error;
        }
        throw std::logic_error("the transfer succeeded");
    }

    ScriptedFtpServer server_;
    CFTPClient client_{String(server_.host()), "u", "p", CFTPClient::ConnectUnencrypted};
    P<CNetRequest> request_ = new CNetRequest();
};

TEST_F(ScriptedFTPFault, IsAServerWithoutMLSD) {
    server_.answer("MLSD d", "500 'MLSD': command not understood\r\n");
    const CCURLError error = listForError();
    EXPECT_EQ(error.getCode(), CURLE_FTP_COULDNT_RETR_FILE);
    EXPECT_EQ(error.getResponseCode(), 500);
}

TEST_F(ScriptedFTPFault, IsAServerWithoutMLST) {
    server_.answer("MLST /x", "502 not implemented\r\n");
    client_.prepareGetInfoRequest(*request_, "/x");
    try {
        request_->perform();
        FAIL() << "the transfer succeeded";
    } catch (const CCURLError& error) {
        EXPECT_EQ(error.getCode(), CURLE_QUOTE_ERROR);
        EXPECT_EQ(error.getResponseCodeDomain(), "ftp");
        EXPECT_EQ(error.getResponseCode(), 502);
    }
}

TEST_F(ScriptedFTPFault, IsAServerThatIsNotAvailable) {
    server_.answer("USER u", "421 too many users\r\n");
    const CCURLError error = listForError();
    EXPECT_EQ(error.getResponseCode(), 421);
    EXPECT_TRUE(vantra::isNetworkOrServiceDownError(error));
}

TEST_F(ScriptedFTPFault, IsAControlConnectionClosedBeforeTheListing) {
    server_.answer("MLSD d", "");
    const CCURLError error = listForError();
    EXPECT_EQ(error.getCode(), CURLE_RECV_ERROR);
    EXPECT_EQ(error.getResponseCode(), 0);
}

TEST_F(ScriptedFTPFault, IsADataConnectionThatIsRefused) {
    const testsupport::RefusedPort refused;
    const std::string port = std::to_string(refused.port());
    server_.answer("EPSV", "229 Entering Extended Passive Mode (|||" + port + "|)\r\n");
    server_.answer("PASV", "227 Entering Passive Mode (127,0,0,1," + std::to_string(refused.port() / 256) +
                               "," + std::to_string(refused.port() % 256) + ")\r\n");
    const CCURLError error = listForError();
    EXPECT_EQ(error.getCode(), CURLE_COULDNT_CONNECT);
    EXPECT_EQ(error.getResponseCode(), 227);
    EXPECT_TRUE(vantra::isNetworkOrServiceDownError(error));
}

TEST(FTPControlConnection, ClosedInTheMiddleOfAListingIsAnError) {
    // The listing has begun and its end is never announced.
    testsupport::ScriptedServer data;
    data.play(testsupport::Script().send("type=file;size=1; a\r\ntype=file;si").close());
    testsupport::ScriptedServer control;
    control.play(testsupport::Script()
                     .send("220 ready\r\n")
                     .expectLine("USER u")
                     .send("331 password, please\r\n")
                     .expectLine("PASS p")
                     .send("230 come in\r\n")
                     .expectLine("PWD")
                     .send("257 \"/\" is here\r\n")
                     .expectLine("EPSV")
                     .send("229 Entering Extended Passive Mode (|||" + std::to_string(data.port()) + "|)\r\n")
                     .expectLine("TYPE A")
                     .send("200 as you like\r\n")
                     .expectLine("MLSD d")
                     .send("150 here it comes\r\n")
                     .close());
    const CFTPClient client(String("127.0.0.1:" + std::to_string(control.port())), "u", "p",
                            CFTPClient::ConnectUnencrypted);
    const P<CNetRequest> request = new CNetRequest();
    try {
        static_cast<void>(client.listDir(*request, "/d"));
        FAIL() << "the listing succeeded";
    } catch (const CCURLError& error) {
        EXPECT_EQ(error.getCode(), CURLE_RECV_ERROR);
        EXPECT_EQ(error.getResponseCodeDomain(), "ftp");
        EXPECT_EQ(error.getResponseCode(), 0);
    }
    EXPECT_THAT(control.finish(), testing::IsEmpty());
    EXPECT_THAT(data.finish(), testing::IsEmpty());
}

} // namespace
