#include "support/ChildProcess.h"

#include "support/Ports.h"
#include "support/ProcessGroup.h"
#include "support/Wait.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <fcntl.h>
#include <string_view>
#include <sys/mman.h>
#include <sys/wait.h>
#include <unistd.h>
#include <utility>

namespace testsupport {

namespace {

SpawnRequest requestFor(const std::vector<std::string>& arguments, const ChildOptions& options, int output) {
    SpawnRequest request;
    request.arguments = arguments;
    request.workingDirectory = options.workingDirectory;
    request.environment = options.environment;
    request.standardOutput = output;
    request.standardError = output;
    request.deathSignal = options.deathSignal;
    return request;
}

/// Whether a server complains in its output that it could not have its port. Some go on trying for seconds.
bool complainsAboutPort(const std::string& output) {
    constexpr std::array<std::string_view, 3> complaints{"ddress already in use", "Connection in use",
                                                         "Could not create listening sockets"};
    return std::ranges::any_of(
        complaints, [&](std::string_view complaint) { return output.find(complaint) != std::string::npos; });
}

} // namespace

ChildProcess::ChildProcess(const std::vector<std::string>& arguments, ChildOptions options)
    : options_(std::move(options)),
      program_(arguments.at(0)),
      output_(openOutput()),
      pid_(spawn(requestFor(arguments, options_, output_.get()))) {}

ChildProcess::~ChildProcess() { stop(); }

FileDescriptor ChildProcess::openOutput() const {
    if (options_.outputFile.empty()) {
        return checkedDescriptor(::memfd_create("child output", MFD_CLOEXEC), "make a file in memory");
    }
    constexpr int flags = O_RDWR | O_CREAT | O_APPEND | O_CLOEXEC;
    return checkedDescriptor(::open(options_.outputFile.c_str(), flags, 0600), "open " + options_.outputFile);
}

bool ChildProcess::isRunning() {
    if (exitStatus_) return false;
    siginfo_t information{};
    const int result = ::waitid(P_PID, static_cast<id_t>(pid_), &information, WEXITED | WNOHANG | WNOWAIT);
    if (result == 0 && information.si_pid == 0) return true;
    reap();
    return false;
}

/// Ends what the child has left behind and takes its exit status. In this order: as long as the child has not
/// been waited for, its number, and so that of its group, cannot belong to anybody else.
void ChildProcess::reap() {
    ::kill(-pid_, SIGKILL);
    int status = 0;
    while (::waitpid(pid_, &status, 0) < 0) {
        if (errno != EINTR) break;
    }
    exitStatus_ = shellExitStatus(status);
    // A killed worker may keep its ports for another moment.
    waitUntil([this] { return !isGroupRunning(pid_); }, options_.stopLimit);
}

std::optional<int> ChildProcess::exitStatus() {
    isRunning();
    return exitStatus_;
}

int ChildProcess::stop() {
    if (isRunning()) {
        ::kill(pid_, options_.stopSignal);
        if (!waitUntil([this] { return !isRunning(); }, options_.stopLimit)) reap();
    }
    return *exitStatus_;
}

std::string ChildProcess::output() const {
    std::string text;
    std::array<char, 65536> buffer;
    while (true) {
        const ssize_t size =
            ::pread(output_.get(), buffer.data(), buffer.size(), static_cast<off_t>(text.size()));
        if (size < 0) throwErrno("read the output of " + program_);
        if (size == 0) return text;
        text.append(buffer.data(), static_cast<std::size_t>(size));
    }
}

std::string ChildProcess::outputTail() const {
    constexpr std::size_t longest = 4000;
    const std::string text = output();
    return text.size() > longest ? "..." + text.substr(text.size() - longest) : text;
}

std::string ChildProcess::description() const { return program_ + " (process " + std::to_string(pid_) + ")"; }

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
        throw std::runtime_error(description() + " ended with status " + std::to_string(*exitStatus_) +
                                 " before it accepted connections on " + awaited +
                                 "; its output: " + outputTail());
    }
}

} // namespace testsupport
