#include "support/CertificateAuthority.h"

#include "support/Command.h"

#include <gtest/gtest.h>
#include <string>

using namespace testsupport;

namespace {

const std::vector<std::string> localNames{"DNS:localhost", "IP:127.0.0.1"};

/// What "openssl verify" says about a certificate: "OK", or the reason why not.
std::string verdict(const std::string& certFile, const std::string& caFile,
                    std::vector<std::string> more = {}) {
    std::vector<std::string> command{"openssl", "verify", "-x509_strict", "-CAfile", caFile};
    command.insert(command.end(), more.begin(), more.end());
    command.push_back(certFile);
    const CommandResult result = runCommand(command);
    if (result.exitStatus == 0) return "OK";
    const std::string lookup = " depth lookup: ";
    const std::size_t reason = result.standardError.find(lookup) + lookup.size();
    return result.standardError.substr(reason, result.standardError.find('\n', reason) - reason);
}

std::string describe(const std::string& certFile, const std::vector<std::string>& what) {
    std::vector<std::string> command{"openssl", "x509", "-noout", "-in", certFile};
    command.insert(command.end(), what.begin(), what.end());
    return runCommand(command).standardOutput;
}

} // namespace

TEST(CertificateAuthority, IssuesServerCertificatesForTheNamesGiven) {
    CertificateAuthority authority;
    const Certificate server = authority.issue("localhost", localNames);
    EXPECT_EQ(verdict(server.certFile, authority.caFile(), {"-purpose", "sslserver"}), "OK");
    EXPECT_EQ(verdict(server.certFile, authority.caFile(), {"-verify_hostname", "localhost"}), "OK");
    EXPECT_EQ(verdict(server.certFile, authority.caFile(), {"-verify_ip", "127.0.0.1"}), "OK");
    EXPECT_EQ(verdict(server.certFile, authority.caFile(), {"-verify_hostname", "other.example"}),
              "hostname mismatch");
    EXPECT_EQ(describe(server.certFile, {"-subject", "-issuer", "-ext", "subjectAltName,extendedKeyUsage"}),
              "subject=CN = localhost\n"
              "issuer=CN = vantra test CA\n"
              "X509v3 Subject Alternative Name: \n"
              "    DNS:localhost, IP Address:127.0.0.1\n"
              "X509v3 Extended Key Usage: \n"
              "    TLS Web Server Authentication\n");
}

TEST(CertificateAuthority, MakesTheKeyThatBelongsToTheCertificate) {
    CertificateAuthority authority;
    const Certificate server = authority.issue("localhost", localNames);
    const std::string publicKey =
        runCommand({"openssl", "pkey", "-pubout", "-in", server.keyFile}).standardOutput;
    EXPECT_EQ(describe(server.certFile, {"-pubkey"}), publicKey);
    EXPECT_EQ(readWholeFile(server.combinedFile),
              readWholeFile(server.keyFile) + readWholeFile(server.certFile));
}

TEST(CertificateAuthority, KeepsEarlierCertificatesOfTheSameName) {
    CertificateAuthority authority;
    const Certificate first = authority.issue("localhost", localNames);
    const std::string before = readWholeFile(first.certFile);
    const Certificate second = authority.issue("localhost", localNames);
    EXPECT_EQ(readWholeFile(first.certFile), before);
    EXPECT_NE(readWholeFile(second.certFile), before);
}

TEST(CertificateAuthority, IssuesClientCertificates) {
    CertificateAuthority authority;
    CertificateOptions options;
    options.forClient = true;
    const Certificate client = authority.issue("client", {"DNS:client"}, options);
    EXPECT_EQ(verdict(client.certFile, authority.caFile(), {"-purpose", "sslclient"}), "OK");
    EXPECT_NE(verdict(client.certFile, authority.caFile(), {"-purpose", "sslserver"}), "OK");
}

TEST(CertificateAuthority, IssuesExpiredCertificates) {
    CertificateAuthority authority;
    CertificateOptions options;
    options.expired = true;
    const Certificate expired = authority.issue("localhost", localNames, options);
    EXPECT_EQ(verdict(expired.certFile, authority.caFile()), "certificate has expired");
    EXPECT_EQ(
        verdict(expired.certFile, authority.caFile(), {"-no_check_time", "-verify_hostname", "localhost"}),
        "OK");
}

TEST(CertificateAuthority, MakesSelfSignedCertificates) {
    CertificateAuthority authority;
    const Certificate own = authority.selfSigned("localhost", localNames);
    EXPECT_EQ(verdict(own.certFile, authority.caFile()), "self-signed certificate");
    EXPECT_EQ(describe(own.certFile, {"-subject", "-issuer"}),
              "subject=CN = localhost\nissuer=CN = localhost\n");
}

TEST(CertificateAuthority, IsNotTrustedByTheClientsOfAnother) {
    CertificateAuthority authority;
    const CertificateAuthority other("another CA");
    const Certificate server = authority.issue("localhost", localNames);
    EXPECT_EQ(verdict(server.certFile, other.caFile()), "unable to get local issuer certificate");
    EXPECT_EQ(describe(other.caFile(), {"-subject"}), "subject=CN = another CA\n");
}

TEST(CertificateAuthority, ReportsNamesThatOpenSslRefuses) {
    CertificateAuthority authority;
    EXPECT_THROW(authority.issue("localhost", {"IP:not-an-address"}), std::runtime_error);
}
