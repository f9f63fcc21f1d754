#include "support/launcher/Launcher.h"

#include <cstdint>
#include <cstdlib>
#include <stdexcept>

namespace testsupport {

namespace {

/// Longer than any program is allowed to run.
constexpr std::chrono::minutes replyLimit{10};

std::uint16_t launcherPort() {
    const char* const port = std::getenv(launcherVariable);
    if (port == nullptr) throw std::runtime_error("this program has to be run by vantra_test_launcher");
    return static_cast<std::uint16_t>(numberIn(port));
}

} // namespace

Launcher::Launcher() : connection_(launcherPort(), replyLimit) {}

Message Launcher::ask(const Message& request) {
    connection_.send(encodeMessage(request));
    const auto readLine = [this] {
        std::string line = connection_.readUntil("\n");
        line.pop_back();
        return line;
    };
    Message reply =
        decodeMessage(readLine, [this](std::size_t count) { return connection_.readBytes(count); });
    if (reply.at(0) == failedReply) throw std::runtime_error(reply.at(1));
    reply.erase(reply.begin());
    return reply;
}

} // namespace testsupport
