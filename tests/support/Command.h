/// @file support/Command.h
/// Running a program to its end, with all that it wrote.
///
///     const CommandResult result = runCommand({"curl", "-s", url});
///     EXPECT_EQ(result.standardOutput, "hello\n");
#pragma once

#include "support/Environment.h"

#include <chrono>
#include <string>
#include <string_view>
#include <vector>

namespace testsupport {

/// What came of a program.
struct CommandResult {
    int exitStatus = -1; ///< as a shell shows it: 128 and the number of the signal for a program ended by one
    std::string standardOutput;
    std::string standardError;
};

/// How runCommand() runs a program.
struct CommandOptions {
    std::string workingDirectory;           ///< empty (the default) for the test's own
    Environment environment;                ///< changes to the test's own environment; none by default
    std::chrono::milliseconds limit{30000}; ///< how long the program may run
};

/// Runs a program to its end.
///
/// All three standard files are pipes. A program which does not read its standard input to the end is no
/// error. Thread safety: any thread may call it.
/// @param arguments the program, by path or by name, and its arguments.
/// @param standardInput the bytes it can read.
/// @throws std::runtime_error if it cannot be started, or was killed because the time limit passed; the text
/// then tells what it had written.
CommandResult runCommand(const std::vector<std::string>& arguments, std::string_view standardInput = {},
                         const CommandOptions& options = {});

} // namespace testsupport
