#include "support/TinyproxyServer.h"

#include "support/ServerStart.h"
#include "support/Wait.h"

#include <utility>

namespace testsupport {

TinyproxyServer::TinyproxyServer(TinyproxyOptions options) {
    StartedServer started =
        startServer(1, [&](const std::vector<std::uint16_t>& ports) { return launch(ports.at(0), options); });
    port_ = started.ports.at(0);
    process_ = std::move(started.process);
}

std::unique_ptr<ChildProcess> TinyproxyServer::launch(std::uint16_t port,
                                                      const TinyproxyOptions& options) const {
    std::string configuration = "Port " + std::to_string(port) +
                                "\n"
                                "Listen 127.0.0.1\n"
                                "Allow 127.0.0.1\n"
                                "Timeout 30\n"
                                "MaxClients 100\n"
                                "LogLevel Connect\n"
                                "ViaProxyName \"testproxy\"\n"
                                "LogFile \"" +
                                folder_.file("tinyproxy.log") + "\"\n";
    if (!options.userName.empty()) {
        configuration += "BasicAuth " + options.userName + " " + options.password + "\n";
    }
    for (const std::uint16_t allowed : options.connectPorts) {
        configuration += "ConnectPort " + std::to_string(allowed) + "\n";
    }
    const std::string file = folder_.writeFile("tinyproxy.conf", configuration);
    return std::make_unique<ChildProcess>(std::vector<std::string>{"tinyproxy", "-d", "-c", file});
}

std::string TinyproxyServer::url() const { return "http://127.0.0.1:" + std::to_string(port_); }

std::string TinyproxyServer::log() const { return folder_.readFile("tinyproxy.log"); }

bool TinyproxyServer::waitForLog(std::string_view text, std::chrono::milliseconds limit) const {
    return waitUntil([&] { return log().find(text) != std::string::npos; }, limit);
}

} // namespace testsupport
