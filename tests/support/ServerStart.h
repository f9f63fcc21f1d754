/// @file support/ServerStart.h
/// Starting a real server on free ports.
#pragma once

#include "support/ChildProcess.h"

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <vector>

namespace testsupport {

/// A server which accepts connections on its ports.
struct StartedServer {
    std::vector<std::uint16_t> ports;
    std::unique_ptr<ChildProcess> process;
};

/// Starts a server on free ports and waits until it accepts connections on all of them. If another program
/// took one of the ports first, starts it again on others, up to five times.
/// @param launch writes the configuration for the given ports and starts the server.
/// @throws std::runtime_error with the end of the server's output.
StartedServer
startServer(std::size_t portCount,
            const std::function<std::unique_ptr<ChildProcess>(const std::vector<std::uint16_t>&)>& launch);

} // namespace testsupport
