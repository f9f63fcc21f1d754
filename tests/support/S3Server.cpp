#include "support/S3Server.h"

#include "support/FilePath.h"
#include "support/ServerStart.h"

#include <utility>

namespace testsupport {

S3Server::S3Server(std::vector<std::string> buckets) : buckets_(std::move(buckets)) {
    constexpr std::size_t portCount =
        4; // of the proxy, and of the services for accounts, buckets and objects
    StartedServer started = startServer(portCount, [this](const auto& ports) { return launch(ports); });
    port_ = started.ports.at(0);
    process_ = std::move(started.process);
}

std::unique_ptr<ChildProcess> S3Server::launch(const std::vector<std::uint16_t>& ports) {
    // A start on other ports must not find the buckets of the one before, whose services are gone.
    const std::string data = folder_.file("start" + std::to_string(++launches_));
    std::filesystem::create_directory(pathOf(data));
    // Debian's packages belong to Debian's interpreter, which need not be the first in $PATH; -I keeps out
    // modules from elsewhere.
    std::vector<std::string> arguments{"/usr/bin/python3", "-I", TEST_SUPPORT_FOLDER "/s3_server.py", data};
    for (const std::uint16_t port : ports) arguments.push_back(std::to_string(port));
    arguments.insert(arguments.end(), buckets_.begin(), buckets_.end());
    ChildOptions options;
    options.stopSignal = Signal::kill; // it has nothing to put in order
    return std::make_unique<ChildProcess>(arguments, options);
}

std::string S3Server::url(std::string_view path) const {
    return "http://127.0.0.1:" + std::to_string(port_) + std::string(path);
}

} // namespace testsupport
