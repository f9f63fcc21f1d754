#include "support/CertificateAuthority.h"

#include "support/Command.h"

#include <stdexcept>

namespace testsupport {

namespace {

void runOpenSsl(const std::vector<std::string>& arguments) {
    std::vector<std::string> command{"openssl"};
    command.insert(command.end(), arguments.begin(), arguments.end());
    const CommandResult result = runCommand(command);
    if (result.exitStatus != 0) throw std::runtime_error("openssl failed: " + result.standardError);
}

/// What every request which comes with a new key has in common.
std::vector<std::string> requestWithNewKey(const std::string& configuration, const std::string& commonName,
                                           const std::string& keyFile) {
    return {"req",
            "-config",
            configuration,
            "-newkey",
            "ec",
            "-pkeyopt",
            "ec_paramgen_curve:prime256v1",
            "-nodes",
            "-keyout",
            keyFile,
            "-subj",
            "/CN=" + commonName};
}

std::string leafExtensions(const std::vector<std::string>& alternativeNames, bool forClient) {
    std::string names;
    for (const std::string& name : alternativeNames) names += (names.empty() ? "" : ",") + name;
    return "basicConstraints = critical,CA:FALSE\n"
           "subjectAltName = " +
           names + "\nextendedKeyUsage = " + (forClient ? "clientAuth" : "serverAuth") + "\n";
}

} // namespace

CertificateAuthority::CertificateAuthority(const std::string& commonName) : own_(nextFiles()) {
    makeCertificate(own_, commonName,
                    "basicConstraints = critical,CA:TRUE\nkeyUsage = critical,keyCertSign,cRLSign\n", {});
}

Certificate CertificateAuthority::issue(const std::string& commonName,
                                        const std::vector<std::string>& alternativeNames,
                                        const CertificateOptions& options) {
    Certificate files = nextFiles();
    const std::string extensions = leafExtensions(alternativeNames, options.forClient);
    if (options.expired)
        makeExpiredCertificate(files, commonName, extensions);
    else
        makeCertificate(files, commonName, extensions, {"-CA", own_.certFile, "-CAkey", own_.keyFile});
    combine(files);
    return files;
}

Certificate CertificateAuthority::selfSigned(const std::string& commonName,
                                             const std::vector<std::string>& alternativeNames) {
    Certificate files = nextFiles();
    makeCertificate(files, commonName, leafExtensions(alternativeNames, false), {});
    combine(files);
    return files;
}

Certificate CertificateAuthority::nextFiles() {
    const std::string stem = folder_.file(std::to_string(++count_));
    return {stem + ".pem", stem + ".key", stem + "-combined.pem"};
}

/// An OpenSSL configuration of our own, so that the machine's does not matter.
std::string CertificateAuthority::writeConfiguration(const std::string& extensions) const {
    return folder_.writeFile(std::to_string(count_) + ".cnf", "[req]\n"
                                                              "distinguished_name = subject\n"
                                                              "x509_extensions = extensions\n"
                                                              "[subject]\n"
                                                              "[extensions]\n" +
                                                                  extensions);
}

/// @param signer openssl's arguments that name the signing certificate and key; empty for a self-signed
/// certificate.
void CertificateAuthority::makeCertificate(const Certificate& files, const std::string& commonName,
                                           const std::string& extensions,
                                           const std::vector<std::string>& signer) {
    std::vector<std::string> arguments =
        requestWithNewKey(writeConfiguration(extensions), commonName, files.keyFile);
    arguments.insert(arguments.end(), {"-x509", "-days", "30", "-out", files.certFile});
    arguments.insert(arguments.end(), signer.begin(), signer.end());
    runOpenSsl(arguments);
}

/// Only openssl's second way, by a signing request, takes a validity that lies in the past.
void CertificateAuthority::makeExpiredCertificate(const Certificate& files, const std::string& commonName,
                                                  const std::string& extensions) {
    const std::string configuration = writeConfiguration(extensions);
    const std::string requestFile = files.certFile + ".csr";
    std::vector<std::string> arguments = requestWithNewKey(configuration, commonName, files.keyFile);
    arguments.insert(arguments.end(), {"-new", "-out", requestFile});
    runOpenSsl(arguments);
    runOpenSsl({"x509", "-req", "-in", requestFile, "-CA", own_.certFile, "-CAkey", own_.keyFile,
                "-CAcreateserial", "-days", "-1", "-extfile", configuration, "-extensions", "extensions",
                "-out", files.certFile});
}

void CertificateAuthority::combine(const Certificate& files) const {
    const std::string name = files.combinedFile.substr(folder_.path().size() + 1);
    folder_.writeFile(name, readWholeFile(files.keyFile) + readWholeFile(files.certFile));
}

} // namespace testsupport
