#include "support/ServerStart.h"

#include "support/Ports.h"

namespace testsupport {

StartedServer
startServer(std::size_t portCount,
            const std::function<std::unique_ptr<ChildProcess>(const std::vector<std::uint16_t>&)>& launch) {
    constexpr int mostAttempts = 5;
    for (int attempt = 1;; ++attempt) {
        StartedServer server;
        server.ports = freePorts(portCount);
        server.process = launch(server.ports);
        try {
            server.process->waitForPorts(server.ports);
            return server;
        } catch (const PortTaken&) {
            if (attempt == mostAttempts) throw;
        }
    }
}

} // namespace testsupport
