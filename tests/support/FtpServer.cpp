#include "support/FtpServer.h"

#include "support/ServerStart.h"

#include <utility>

namespace testsupport {

FtpServer::FtpServer() : certificate_(authority_.issue("127.0.0.1", {"IP:127.0.0.1"})) {
    files_.writeFile("readonly/kept.txt", "kept\n");
}

std::string FtpServer::host(FtpSecurity security) const {
    return "127.0.0.1:" + std::to_string(ports_.at(static_cast<std::size_t>(security)));
}

void FtpServer::start(const std::string& home) {
    home_ = home;
    constexpr std::size_t securityCount = 3;
    StartedServer started = startServer(securityCount, [this](const auto& ports) { return launch(ports); });
    ports_ = std::move(started.ports);
    process_ = std::move(started.process);
}

} // namespace testsupport
