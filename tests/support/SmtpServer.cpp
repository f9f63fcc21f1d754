#include "support/SmtpServer.h"

#include "support/FilePath.h"
#include "support/FlatJson.h"
#include "support/ServerStart.h"

#include <map>
#include <sstream>
#include <utility>

namespace testsupport {

namespace {

std::vector<std::string> splitLines(const std::string& text) {
    std::vector<std::string> lines;
    std::istringstream stream(text);
    for (std::string line; std::getline(stream, line);) lines.push_back(line);
    return lines;
}

SmtpMail makeMail(std::string bytes, const std::map<std::string, std::string>& envelope) {
    SmtpMail mail;
    mail.bytes = std::move(bytes);
    mail.from = envelope.at("from");
    mail.recipients = splitLines(envelope.at("recipients"));
    mail.options = splitLines(envelope.at("options"));
    mail.greeting = envelope.at("greeting");
    mail.tlsVersion = envelope.at("tls");
    mail.login = envelope.at("login");
    mail.clientPort = static_cast<std::uint16_t>(std::stoi(envelope.at("clientPort")));
    return mail;
}

} // namespace

SmtpServer::SmtpServer(const std::vector<std::string>& certificateNames) {
    CertificateAuthority authority;
    const Certificate certificate = authority.selfSigned("mail.test", certificateNames);
    folder_.writeFile("certificate.pem", readWholeFile(certificate.certFile));
    StartedServer started = startServer(3, [&](const auto& ports) { return launch(ports, certificate); });
    ports_ = {started.ports.at(0), started.ports.at(1), started.ports.at(2)};
    process_ = std::move(started.process);
}

std::unique_ptr<ChildProcess> SmtpServer::launch(const std::vector<std::uint16_t>& ports,
                                                 const Certificate& certificate) const {
    // Debian's packages belong to Debian's interpreter, which need not be the first in $PATH; -I keeps out
    // modules from elsewhere.
    std::vector<std::string> arguments{"/usr/bin/python3", "-I", TEST_SUPPORT_FOLDER "/smtp_server.py",
                                       folder_.path()};
    for (const std::uint16_t port : ports) arguments.push_back(std::to_string(port));
    arguments.insert(arguments.end(), {certificate.certFile, certificate.keyFile});
    ChildOptions options;
    options.stopSignal = Signal::kill; // it has nothing to put in order
    return std::make_unique<ChildProcess>(arguments, options);
}

std::vector<SmtpMail> SmtpServer::takeMails() {
    std::vector<SmtpMail> mails;
    for (;;) {
        const std::string name = std::to_string(taken_ + 1);
        // Written after the mail itself.
        if (!std::filesystem::exists(pathOf(folder_.file(name + ".json")))) return mails;
        mails.push_back(
            makeMail(folder_.readFile(name + ".eml"), parseFlatJson(folder_.readFile(name + ".json"))));
        std::filesystem::remove(pathOf(folder_.file(name + ".eml")));
        ++taken_;
    }
}

} // namespace testsupport
