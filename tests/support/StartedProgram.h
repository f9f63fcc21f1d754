/// @file support/StartedProgram.h
/// The system's side of a ChildProcess.
#pragma once

#include "support/Environment.h"
#include "support/Signal.h"

#include <chrono>
#include <memory>
#include <optional>
#include <string>
#include <sys/types.h>
#include <vector>

namespace testsupport {

/// How a program is started and stopped.
struct ChildOptions {
    std::string workingDirectory;              ///< empty (the default) for the test's own
    Environment environment;                   ///< changes to the test's own environment; none by default
    std::string outputFile;                    ///< file for both outputs, appended to; empty: kept in memory
    Signal stopSignal = Signal::terminate;     ///< what stop() sends first
    std::chrono::milliseconds stopLimit{5000}; ///< how long stop() waits before it kills the program
    /// What the program gets when the test ends without stopping it. A server with workers needs one that it
    /// can handle, because only the program itself gets it.
    Signal deathSignal = Signal::terminate;
};

/// A program that runs beside the test; see ChildProcess, which has the same members.
class StartedProgram {
public:
    StartedProgram() = default;
    virtual ~StartedProgram() = default;
    StartedProgram(const StartedProgram&) = delete;
    StartedProgram& operator=(const StartedProgram&) = delete;

    virtual pid_t pid() const = 0;
    virtual std::optional<int> exitStatus() = 0;
    virtual void send(Signal signal) = 0;
    virtual int stop() = 0;
    virtual std::string output() const = 0;
};

/// Starts a program; see ChildProcess. Its destruction stops it.
std::unique_ptr<StartedProgram> startProgram(const std::vector<std::string>& arguments,
                                             const ChildOptions& options);

} // namespace testsupport
