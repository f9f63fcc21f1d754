/// @file support/SmtpServer.h
/// A real mail server: aiosmtpd (Debian package python3-aiosmtpd).
///
///     SmtpServer server;
///     send(server.ports().plain, message);
///     EXPECT_EQ(server.takeMails().at(0).bytes, message);
#pragma once

#include "support/CertificateAuthority.h"
#include "support/ChildProcess.h"
#include "support/TempDir.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace testsupport {

/// The ports of an SmtpServer.
struct SmtpPorts {
    std::uint16_t plain = 0;    ///< no TLS; a login is possible and not needed
    std::uint16_t starttls = 0; ///< STARTTLS and then a login are needed
    std::uint16_t tls = 0;      ///< TLS from the start; a login is possible and not needed
};

/// A mail that the server accepted.
struct SmtpMail {
    std::string bytes; ///< as sent, without the doubled dots
    std::string from;
    std::vector<std::string> recipients;
    std::vector<std::string> options; ///< of the command MAIL, such as "SMTPUTF8"
    std::string greeting;             ///< the client's name in EHLO or HELO
    std::string tlsVersion;           ///< as in "TLSv1.3"; empty without TLS
    std::string login;                ///< empty without a login
    std::uint16_t clientPort = 0;     ///< differs for different connections
};

/// A mail server of the test's own on free ports of 127.0.0.1, with a certificate that it signed itself.
///
/// It refuses recipients that start with "reject" (550, on two lines) or "tempfail" (451), senders that start
/// with "badsender" (553), mails that hold "REJECT-DATA" (554) and those of more than 32 MiB (552).
///
/// Thread safety: const members from any thread.
class SmtpServer {
public:
    /// Starts the server and waits until it accepts connections.
    /// @param certificateNames for which its certificate is valid.
    /// @throws std::runtime_error with its output if it does not start.
    explicit SmtpServer(const std::vector<std::string>& certificateNames = {"DNS:localhost", "IP:127.0.0.1"});

    const SmtpPorts& ports() const { return ports_; }

    /// Its certificate, for a client that trusts nothing else.
    std::string caFile() const { return folder_.file("certificate.pem"); }

    /// The mails accepted since the last call, in the order of their acceptance. A mail is there when its
    /// client has got the answer.
    std::vector<SmtpMail> takeMails();

    ChildProcess& process() { return *process_; }

    static std::string userName() { return "user"; }
    static std::string password() { return "secret"; }

private:
    std::unique_ptr<ChildProcess> launch(const std::vector<std::uint16_t>& ports,
                                         const Certificate& certificate) const;

    TempDir folder_;
    SmtpPorts ports_;
    std::size_t taken_ = 0;
    std::unique_ptr<ChildProcess> process_;
};

} // namespace testsupport
