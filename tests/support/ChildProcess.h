/// @file support/ChildProcess.h
/// A server or other program which runs beside a test.
///
///     ChildProcess server({"nginx", "-c", folder.file("nginx.conf")});
///     server.waitForPort(port);
#pragma once

#include "support/StartedProgram.h"

#include <chrono>
#include <cstdint>
#include <memory>
#include <optional>
#include <stdexcept>
#include <string>
#include <sys/types.h>
#include <vector>

namespace testsupport {

/// A child process. The destructor stops it; should the test crash, the system does.
///
/// Standard input is /dev/null. The child leads a process group of its own; what is left of the group when
/// the child has ended is killed, and has ended, too, when stop() returns.
///
/// Thread safety: one thread at a time; it need not be the same one.
class ChildProcess {
public:
    /// Starts the program.
    /// @param arguments the program, by path or by name, and its arguments.
    /// @throws std::runtime_error if it cannot be started.
    explicit ChildProcess(const std::vector<std::string>& arguments, const ChildOptions& options = {});

    pid_t pid() const { return process_->pid(); }

    bool isRunning() { return !exitStatus(); }

    /// The exit status as a shell shows it, or nothing while the child runs.
    std::optional<int> exitStatus() { return process_->exitStatus(); }

    /// Sends a signal to the child if it still runs.
    void send(Signal signal) { process_->send(signal); }

    /// Ends the child if it still runs, and waits for that.
    /// @return the exit status as a shell shows it.
    int stop() { return process_->stop(); }

    /// What the child has written to both outputs so far.
    std::string output() const { return process_->output(); }

    /// Waits until the child accepts connections on a port of 127.0.0.1.
    /// @throws PortTaken if its output says that somebody else has a port; std::runtime_error, with the end
    /// of its output, if it ends or the time limit passes before that.
    void waitForPort(std::uint16_t port, std::chrono::milliseconds limit = defaultStartLimit);

    /// Waits for several ports, within one limit for all; see waitForPort().
    void waitForPorts(const std::vector<std::uint16_t>& ports,
                      std::chrono::milliseconds limit = defaultStartLimit);

    static constexpr std::chrono::milliseconds defaultStartLimit{20000};

private:
    std::string description() const;
    std::string outputTail() const;
    void throwIfStartFailed(const std::string& awaited);

    const std::string program_;
    const std::unique_ptr<StartedProgram> process_;
};

/// A server could not have its port.
class PortTaken : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

} // namespace testsupport
