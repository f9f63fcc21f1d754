#include "support/HttpbinServer.h"

#include "support/ServerStart.h"
#include "support/TcpClient.h"

#include <stdexcept>
#include <utility>
#include <vector>

namespace testsupport {

HttpbinServer::HttpbinServer() {
    StartedServer started = startServer(1, [this](const auto& ports) { return launch(ports.at(0)); });
    port_ = started.ports.at(0);
    process_ = std::move(started.process);
    waitForAnswer();
}

std::unique_ptr<ChildProcess> HttpbinServer::launch(std::uint16_t port) const {
    // Debian's packages belong to Debian's interpreter, which need not be the first in $PATH; -I keeps out
    // modules from elsewhere.
    const std::vector<std::string> arguments{"/usr/bin/python3",
                                             "-I",
                                             "-m",
                                             "gunicorn",
                                             "--bind",
                                             "127.0.0.1:" + std::to_string(port),
                                             "--worker-class",
                                             "gthread",
                                             "--threads",
                                             "8",
                                             "--workers",
                                             "1",
                                             "--keep-alive",
                                             "75",
                                             "--graceful-timeout",
                                             "1",
                                             "--worker-tmp-dir",
                                             folder_.path(),
                                             "httpbin:app"};
    ChildOptions options;
    options.workingDirectory = folder_.path();
    options.environment["GUNICORN_CMD_ARGS"] = std::nullopt;
    // Its orderly end takes a third of a second, and it has nothing to put in order.
    options.stopSignal = Signal::kill;
    return std::make_unique<ChildProcess>(arguments, options);
}

/// It accepts connections before it has loaded the application, and does so even if that fails.
void HttpbinServer::waitForAnswer() const {
    TcpClient client(port_);
    client.send("GET /status/200 HTTP/1.1\r\nHost: localhost\r\nConnection: close\r\n\r\n");
    const std::string answer = client.readToEnd();
    if (!answer.starts_with("HTTP/1.1 200 OK\r\n")) {
        throw std::runtime_error("httpbin did not start: " + answer + process_->output());
    }
}

std::string HttpbinServer::url(std::string_view path) const {
    return "http://127.0.0.1:" + std::to_string(port_) + std::string(path);
}

} // namespace testsupport
