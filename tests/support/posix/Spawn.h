/// @file support/posix/Spawn.h
/// Starting another program; what ChildProcess and runCommand() share.
#pragma once

#include "support/Environment.h"

#include <string>
#include <sys/types.h>
#include <vector>

namespace testsupport {

/// What to start and with which files. The descriptors stay the caller's.
struct SpawnRequest {
    std::vector<std::string> arguments; ///< the program, by path or by name, and its arguments
    std::string workingDirectory;       ///< empty for this process's own
    Environment environment;            ///< what to change in this process's environment
    int standardInput = -1;             ///< -1 for /dev/null
    int standardOutput = -1;
    int standardError = -1;
    int deathSignal = 0; ///< what the program gets when this process ends, however it ends
};

/// Starts a program in a process group of its own, with no descriptors but the three standard ones, no
/// blocked signals and SIGPIPE at its default.
///
/// The calling thread may end before the program does. Other threads may run, and may hold locks.
/// @return the process id; the caller has to wait for the process.
/// @throws std::runtime_error if the program is not found, std::system_error if it cannot be started.
pid_t spawn(const SpawnRequest& request);

/// The path of a program: looked up in $PATH and then in the folders for system programs, which an ordinary
/// user's $PATH leaves out. A name with a slash is answered as it is.
/// @throws std::runtime_error if there is none.
std::string findProgram(const std::string& name);

/// The exit status as a shell shows it: the program's own, or 128 and the number of the signal that ended it.
int shellExitStatus(int waitStatus);

} // namespace testsupport
