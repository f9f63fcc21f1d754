#include "FTPFixture.h"

#include "support/ProftpdServer.h"
#include "support/PyftpdlibServer.h"
#include "support/ServerFile.h"

#include <algorithm>
#include <iterator>
#include <map>
#include <stdexcept>

using kel::P;
using kel::String;
using testsupport::FtpSecurity;
using testsupport::FtpServer;
using vantra::CCURLError;
using vantra::CFTPClient;
using vantra::CNetRequest;

namespace {

constexpr int wakeUpMilliseconds = 50;

template <class Server>
FtpServer& shared() {
    static Server server;
    return server;
}

CFTPClient::ConnectType connectType(FtpSecurity security) {
    switch (security) {
    case FtpSecurity::none:
        return CFTPClient::ConnectUnencrypted;
    case FtpSecurity::explicitTls:
        return CFTPClient::ConnectExplicitTLS;
    case FtpSecurity::implicitTls:
        return CFTPClient::ConnectImplicitTLS;
    }
    throw std::logic_error("no such security");
}

std::string testFolder() {
    std::string name = testing::UnitTest::GetInstance()->current_test_info()->name();
    std::ranges::replace(name, '/', '-');
    return "/" + name;
}

} // namespace

const std::vector<Peer>& allPeers() {
    using testsupport::ProftpdServer;
    using testsupport::PyftpdlibServer;
    static const std::vector<Peer> peers = {
        {"ProftpdPlain", shared<ProftpdServer>, FtpSecurity::none},
        {"ProftpdExplicitTLS", shared<ProftpdServer>, FtpSecurity::explicitTls},
        {"ProftpdImplicitTLS", shared<ProftpdServer>, FtpSecurity::implicitTls},
        {"PyftpdlibPlain", shared<PyftpdlibServer>, FtpSecurity::none},
        {"PyftpdlibExplicitTLS", shared<PyftpdlibServer>, FtpSecurity::explicitTls},
        {"PyftpdlibImplicitTLS", shared<PyftpdlibServer>, FtpSecurity::implicitTls},
    };
    return peers;
}

std::vector<Peer> plainPeers() {
    std::vector<Peer> peers;
    std::ranges::copy_if(allPeers(), std::back_inserter(peers),
                         [](const Peer& peer) { return peer.security == FtpSecurity::none; });
    return peers;
}

CTestClient::CTestClient(const Peer& peer, const std::string& password)
    : CFTPClient(String(peer.server().host(peer.security)), String(FtpServer::userName()), String(password),
                 connectType(peer.security)),
      caFile_(peer.server().caFile()) {}

void CTestClient::beginPrepareRequest(CNetRequest& request, const String& path,
                                      bool createMissingDirs) const {
    CFTPClient::beginPrepareRequest(request, path, createMissingDirs);
    request.setRootCertBundlePath(String(caFile_));
    request.setProxy("");
    // Until the TLS of a data connection is up, libcurl 7.88 waits for that connection alone, and ProFTPD
    // begins with it when the transfer is asked for. Replies to commands before that are seen when a timer
    // ends the wait: this one, or else that of a whole second.
    request.setOptionInt(CURLOPT_HAPPY_EYEBALLS_TIMEOUT_MS, wakeUpMilliseconds);
}

P<CNetRequest> OverFTP::sharedRequest(const Peer& peer) {
    static std::map<std::string, P<CNetRequest>> requests;
    P<CNetRequest>& request = requests[peer.name];
    if (!request) request = new CNetRequest();
    request->reset();
    return request;
}

OverFTP::OverFTP() : folder_(testFolder()) { makeFolder(""); }

String OverFTP::at(std::string_view path) const { return String(server().path(folder_ + std::string(path))); }

void OverFTP::writeFile(std::string_view path, std::string_view content) const {
    testsupport::writeServerFile(fileAt(path), content);
}

std::string OverFTP::readFile(std::string_view path) const {
    return testsupport::readServerFile(fileAt(path));
}

void OverFTP::makeFolder(std::string_view path) const { testsupport::makeServerFolder(fileAt(path)); }

bool OverFTP::exists(std::string_view path) const { return testsupport::existsOnServer(fileAt(path)); }

std::vector<std::string> OverFTP::namesIn(std::string_view path) const {
    return testsupport::namesInServerFolder(fileAt(path));
}

CCURLError OverFTP::performForError(CNetRequest& request) {
    return errorOf([&] { request.perform(); });
}

void OverFTP::expectRefusedTransfer(const CCURLError& error) {
    EXPECT_EQ(error.getResponseCodeDomain(), "ftp");
    const bool isRefusal = error.getResponseCode() == 550 || error.getResponseCode() == 501;
    if (error.getCode() == CURLE_FTP_WEIRD_PASV_REPLY) {
        EXPECT_NE(GetParam().security, FtpSecurity::none);
        EXPECT_TRUE(isRefusal || error.getResponseCode() == 227) << error.getResponseCode();
    } else {
        EXPECT_THAT(error.getCode(), testing::AnyOf(CURLE_UPLOAD_FAILED, CURLE_REMOTE_ACCESS_DENIED,
                                                    CURLE_FTP_COULDNT_RETR_FILE));
        EXPECT_TRUE(isRefusal) << error.getResponseCode();
    }
}

std::string getBody(const CNetRequest& request) {
    const auto buffer = request.getDefaultReceiveBuffer();
    return {reinterpret_cast<const char*>(buffer->getData()), buffer->getUsed()};
}

std::vector<std::string> namesOf(const vantra::CFTPListDirResult& listing) {
    std::vector<std::string> names;
    for (const P<vantra::CFTPDirEntry>& entry : listing.getEntries()) {
        if (entry->getType() != kel::IFileInfoBase::Unknown) names.push_back(entry->getName().toUTF8());
    }
    std::ranges::sort(names);
    return names;
}
