#include "support/ProftpdServer.h"

#include "support/Command.h"
#include "support/ServerUser.h"

#include <stdexcept>

namespace testsupport {

namespace {

/// The password as the server's own list of users holds it.
std::string hashedPassword() {
    const CommandResult result = runCommand({"openssl", "passwd", "-6", FtpServer::password()});
    if (result.exitStatus != 0) throw std::runtime_error("openssl passwd: " + result.standardError);
    return result.standardOutput.substr(0, result.standardOutput.find('\n'));
}

/// Whose rights the server has while nobody is logged in.
std::string identity() {
    const ServerUser& user = serverUser();
    if (user.isRoot()) return "User nobody\nGroup nogroup\n";
    if (user.name.empty()) throw std::runtime_error("the test's user has no name");
    return "User " + user.name + "\n";
}

std::string virtualHost(std::uint16_t port, const std::string& directives) {
    return "<VirtualHost 127.0.0.1>\nPort " + std::to_string(port) + "\n" + directives + "</VirtualHost>\n";
}

} // namespace

ProftpdServer::ProftpdServer() {
    const ServerUser& user = serverUser();
    workFolder().writeFile("group", "users:x:" + user.groupId + ":\n");
    const std::string passwd = userName() + ":" + hashedPassword() + ":" + user.id + ":" + user.groupId +
                               "::" + folder() + ":/bin/false\n";
    // The server wants nobody else to be able to read it.
    runCommand({"chmod", "600", workFolder().writeFile("passwd", passwd)});
    start("/" + folder());
}

std::string ProftpdServer::configuration(const std::vector<std::uint16_t>& ports) const {
    const std::string tls = "TLSEngine on\nTLSRequired on\nTLSProtocol TLSv1.2 TLSv1.3\n"
                            "TLSECCertificateFile " +
                            certificate().certFile + "\nTLSECCertificateKeyFile " + certificate().keyFile +
                            "\n";
    return "LoadModule mod_tls.c\n"
           "ServerType inetd\n"
           "ServerName test\n"
           "DefaultAddress 127.0.0.1\n"
           "UseIPv6 off\n"
           "Port " +
           std::to_string(ports.at(0)) + "\n" + identity() + "ScoreboardFile " +
           workFolder().file("scoreboard") +
           "\nTransferLog none\n"
           "WtmpLog off\n"
           "DelayEngine off\n"
           "UseReverseDNS off\n"
           "TimeoutLinger 0\n"
           "LogFormat commands \"%r -> %s\"\n"
           "<Global>\n"
           "AuthOrder mod_auth_file.c\n"
           "AuthUserFile " +
           workFolder().file("passwd") + "\nAuthGroupFile " + workFolder().file("group") +
           "\nRequireValidShell off\n"
           "RootLogin on\n"
           "AllowOverwrite on\n"
           "AllowStoreRestart on\n"
           "AllowRetrieveRestart on\n"
           "ExtendedLog " +
           workFolder().file("commands.log") + " ALL commands\n<Directory " + file("/readonly") +
           ">\n<Limit WRITE>\nDenyAll\n</Limit>\n</Directory>\n"
           "</Global>\n" +
           virtualHost(ports.at(1), tls + "TLSOptions NoSessionReuseRequired\n") +
           virtualHost(ports.at(2), tls + "TLSOptions NoSessionReuseRequired UseImplicitSSL\n");
}

std::unique_ptr<ChildProcess> ProftpdServer::launch(const std::vector<std::uint16_t>& ports) const {
    static const std::string program = "/usr/sbin/proftpd";
    const std::string file = workFolder().writeFile("proftpd.conf", configuration(ports));
    const CommandResult check = runCommand({program, "-t", "-c", file});
    if (check.exitStatus != 0) throw std::runtime_error(program + " -t: " + check.standardError);

    // The server's own process for connections would sleep for 0.2 to 0.4 seconds at the end of each one,
    // and the next one wait for it: it waits that long after every interrupted system call.
    std::vector<std::string> arguments{"/usr/bin/python3", "-I", TEST_SUPPORT_FOLDER "/superserver.py",
                                       std::to_string(ports.size())};
    for (const std::uint16_t port : ports) arguments.push_back(std::to_string(port));
    arguments.insert(arguments.end(), {program, "-c", file});
    ChildOptions options;
    options.stopSignal = Signal::kill; // it has nothing to put in order
    return std::make_unique<ChildProcess>(arguments, options);
}

std::string ProftpdServer::log() const { return workFolder().readFile("commands.log"); }

} // namespace testsupport
