/// @file FTPFixture.h
/// The FTP servers that the tests of this program share, and their client.
#pragma once

#include <vantra/vantra.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "support/FtpServer.h"

#include <ostream>
#include <string>
#include <string_view>
#include <vector>

/// A real server and a way to reach it.
struct Peer {
    std::string name;
    testsupport::FtpServer& (*server)();
    testsupport::FtpSecurity security;

    friend std::ostream& operator<<(std::ostream& stream, const Peer& peer) { return stream << peer.name; }
};

/// ProFTPD and pyftpdlib, each started for the first test that asks for it and stopped at the end of the
/// program, without TLS, with explicit and with implicit TLS.
const std::vector<Peer>& allPeers();

/// Adds to every request that it trusts the server's authority and uses no proxy.
class CTestClient : public vantra::CFTPClient {
public:
    explicit CTestClient(const Peer& peer, const std::string& password = testsupport::FtpServer::password());

protected:
    void beginPrepareRequest(vantra::CNetRequest& request, const kel::String& path,
                             bool createMissingDirs) const override;

private:
    std::string caFile_;
};

/// Tests that run with each of allPeers(). Each has a folder of its own on the server.
class OverFTP : public testing::TestWithParam<Peer> {
protected:
    OverFTP();

    static testsupport::FtpServer& server() { return GetParam().server(); }

    /// A path of the test's own folder as a client gives it, unescaped.
    kel::String at(std::string_view path) const;
    /// The same where it goes into a URL.
    kel::String escapedAt(std::string_view path) const { return CTestClient::escapePath(at(path)); }

    // The test's own folder in the server's file system.

    std::string fileAt(std::string_view path) const { return server().file(folder_ + std::string(path)); }
    void writeFile(std::string_view path, std::string_view content) const;
    std::string readFile(std::string_view path) const;
    void makeFolder(std::string_view path) const;
    bool exists(std::string_view path) const;
    /// The names in a folder, sorted.
    std::vector<std::string> namesIn(std::string_view path) const;

    /// Performs a request that was prepared and must fail.
    vantra::CCURLError performForError() const { return performForError(*request_); }
    static vantra::CCURLError performForError(vantra::CNetRequest& request);
    /// The same for any function.
    template <class Function>
    static vantra::CCURLError errorOf(Function function);

    /// Expects that the server has refused an upload, a listing or a directory on the way to it. Over TLS a
    /// libcurl that opens the data connection first reads the refusal as the reply to a second try, and may
    /// see the reply to that as the last one.
    static void expectRefusedTransfer(const vantra::CCURLError& error);

    kel::P<CTestClient> client_ = new CTestClient(GetParam());
    /// The peer's, which keeps its connection from test to test, or another one that a test makes.
    kel::P<vantra::CNetRequest> request_ = sharedRequest(GetParam());

private:
    static kel::P<vantra::CNetRequest> sharedRequest(const Peer& peer);

    std::string folder_; // from "/" on
};

/// The body of the latest transfer.
std::string getBody(const vantra::CNetRequest& request);

/// The names in a listing, sorted; those of the directory itself and the one above are left out.
std::vector<std::string> namesOf(const vantra::CFTPListDirResult& listing);

template <class Function>
vantra::CCURLError OverFTP::errorOf(Function function) {
    try {
        function();
    } catch (const vantra::CCURLError& error) {
        return error;
    }
    throw std::logic_error("the transfer succeeded");
}

/// Those of allPeers() without TLS, one of each make: for tests to which TLS makes no difference.
std::vector<Peer> plainPeers();

/// Defines the tests of a suite for allPeers().
#define FOR_ALL_PEERS(Suite)                                                                                 \
    INSTANTIATE_TEST_SUITE_P(Peer, Suite, testing::ValuesIn(allPeers()),                                     \
                             [](const auto& tested) { return tested.param.name; })

/// The same for plainPeers().
#define FOR_PLAIN_PEERS(Suite)                                                                               \
    INSTANTIATE_TEST_SUITE_P(Peer, Suite, testing::ValuesIn(plainPeers()),                                   \
                             [](const auto& tested) { return tested.param.name; })
