#include "support/ChildProcess.h"

#include "support/Ports.h"
#include "support/Wait.h"

#include <algorithm>
#include <array>
#include <string_view>

namespace testsupport {

namespace {

/// Whether a server complains in its output that it could not have its port. Some go on trying for seconds.
bool complainsAboutPort(const std::string& output) {
    constexpr std::array<std::string_view, 3> complaints{"ddress already in use", "Connection in use",
                                                         "Could not create listening sockets"};
    return std::ranges::any_of(
        complaints, [&](std::string_view complaint) { return output.find(complaint) != std::string::npos; });
}

} // namespace

ChildProcess::ChildProcess(const std::vector<std::string>& arguments, const ChildOptions& options)
    : program_(arguments.at(0)), process_(startProgram(arguments, options)) {}

std::string ChildProcess::outputTail() const {
    constexpr std::size_t longest = 4000;
    const std::string text = output();
    return text.size() > longest ? "..." + text.substr(text.size() - longest) : text;
}

std::string ChildProcess::description() const {
    return program_ + " (process " + std::to_string(pid()) + ")";
}

void ChildProcess::waitForPort(std::uint16_t port, std::chrono::milliseconds limit) {
    waitForPorts({port}, limit);
}

void ChildProcess::waitForPorts(const std::vector<std::uint16_t>& ports, std::chrono::milliseconds limit) {
    const auto deadline = std::chrono::steady_clock::now() + limit;
    for (const std::uint16_t port : ports) {
        const std::string awaited = "port " + std::to_string(port);
        const auto left = std::chrono::duration_cast<std::chrono::milliseconds>(
            deadline - std::chrono::steady_clock::now());
        const bool accepts = waitUntil(
            [&] {
                throwIfStartFailed(awaited);
                return acceptsConnections(port);
            },
            left);
        if (!accepts) {
            throw std::runtime_error(description() + " did not accept connections on " + awaited +
                                     " within " + std::to_string(limit.count()) +
                                     " ms; its output: " + outputTail());
        }
    }
    // The port may have been somebody else's who accepted in the place of a child that has failed since.
    throwIfStartFailed("its ports");
}

void ChildProcess::throwIfStartFailed(const std::string& awaited) {
    const bool running = isRunning();
    if (complainsAboutPort(output())) {
        throw PortTaken(description() + " found a port taken while starting; its output: " + outputTail());
    }
    if (!running) {
        throw std::runtime_error(description() + " ended with status " + std::to_string(*exitStatus()) +
                                 " before it accepted connections on " + awaited +
                                 "; its output: " + outputTail());
    }
}

} // namespace testsupport
