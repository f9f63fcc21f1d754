/// @file support/ChildProcess.h
/// A server or other program which runs beside a test.
///
///     ChildProcess server({"nginx", "-c", folder.file("nginx.conf")});
///     server.waitForPort(port);
#pragma once

#include "support/FileDescriptor.h"
#include "support/Spawn.h"

#include <chrono>
#include <csignal>
#include <cstdint>
#include <optional>
#include <stdexcept>
#include <string>
#include <sys/types.h>
#include <vector>

namespace testsupport {

/// How a ChildProcess is started and stopped.
struct ChildOptions {
    std::string workingDirectory;              ///< empty (the default) for the test's own
    Environment environment;                   ///< changes to the test's own environment; none by default
    std::string outputFile;                    ///< file for both outputs, appended to; empty: kept in memory
    int stopSignal = SIGTERM;                  ///< what stop() sends first
    std::chrono::milliseconds stopLimit{5000}; ///< how long stop() waits before it sends SIGKILL
    /// What the child gets when the test ends without stopping it. A server with workers needs one that it
    /// can handle, because only the child itself gets it.
    int deathSignal = SIGTERM;
};

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
    explicit ChildProcess(const std::vector<std::string>& arguments, ChildOptions options = {});
    ~ChildProcess();

    ChildProcess(const ChildProcess&) = delete;
    ChildProcess& operator=(const ChildProcess&) = delete;

    pid_t pid() const { return pid_; }

    bool isRunning();

    /// The exit status as a shell shows it, or nothing while the child runs.
    std::optional<int> exitStatus();

    /// Ends the child if it still runs, and waits for that.
    /// @return the exit status as a shell shows it.
    int stop();

    /// What the child has written to both outputs so far.
    std::string output() const;

    /// Waits until the child accepts connections on a port of 127.0.0.1.
    /// @throws PortTaken if its output says that somebody else has a port; std::runtime_error, with the end
    /// of its output, if it ends or the time limit passes before that.
    void waitForPort(std::uint16_t port, std::chrono::milliseconds limit = defaultStartLimit);

    /// Waits for several ports, within one limit for all; see waitForPort().
    void waitForPorts(const std::vector<std::uint16_t>& ports,
                      std::chrono::milliseconds limit = defaultStartLimit);

    static constexpr std::chrono::milliseconds defaultStartLimit{20000};

private:
    FileDescriptor openOutput() const;
    void reap();
    std::string description() const;
    std::string outputTail() const;
    void throwIfStartFailed(const std::string& awaited);

    const ChildOptions options_;
    const std::string program_;
    FileDescriptor output_;
    pid_t pid_;
    std::optional<int> exitStatus_;
};

/// A server could not have its port.
class PortTaken : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

} // namespace testsupport
