/// @file support/CertificateAuthority.h
/// Certificates for test servers, made on the fly.
///
///     CertificateAuthority authority;
///     const Certificate server = authority.issue("localhost", {"DNS:localhost", "IP:127.0.0.1"});
#pragma once

#include "support/TempDir.h"

#include <string>
#include <vector>

namespace testsupport {

/// A certificate and its private key, as paths of PEM files.
struct Certificate {
    std::string certFile;
    std::string keyFile;
    std::string combinedFile; ///< key and certificate in one file, which some servers want
};

/// What is special about a certificate.
struct CertificateOptions {
    bool expired = false;   ///< its validity ended a day ago; by default it lasts for 30 days
    bool forClient = false; ///< identifies a client instead of a server
};

/// A certificate authority with elliptic-curve keys, new for each object, which keeps its files until it is
/// destroyed. Two objects know nothing of each other: a client that trusts one must refuse the other's
/// certificates.
///
/// Thread safety: one thread at a time.
class CertificateAuthority {
public:
    /// @param commonName the name in its certificate.
    /// @throws std::runtime_error, with openssl's output, if openssl fails; so does every member that makes a
    /// certificate.
    explicit CertificateAuthority(const std::string& commonName = "vantra test CA");

    /// The authority's own certificate, for the client's trust store.
    const std::string& caFile() const { return own_.certFile; }

    /// Issues a certificate.
    /// @param commonName the subject's name.
    /// @param alternativeNames the names it is valid for, as "DNS:localhost" or "IP:127.0.0.1"; at least one.
    Certificate issue(const std::string& commonName, const std::vector<std::string>& alternativeNames,
                      const CertificateOptions& options = {});

    /// Makes a certificate which no authority has signed; see issue().
    Certificate selfSigned(const std::string& commonName, const std::vector<std::string>& alternativeNames);

private:
    Certificate nextFiles();
    std::string writeConfiguration(const std::string& extensions) const;
    void makeCertificate(const Certificate& files, const std::string& commonName,
                         const std::string& extensions, const std::vector<std::string>& signer);
    void makeExpiredCertificate(const Certificate& files, const std::string& commonName,
                                const std::string& extensions);
    void combine(const Certificate& files) const;

    TempDir folder_;
    int count_ = 0;
    Certificate own_;
};

} // namespace testsupport
