/// @file support/launcher/Message.h
/// What the launcher and the test programs that use it say to each other.
#pragma once

#include "support/Environment.h"

#include <cstddef>
#include <functional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace testsupport {

/// A list of texts of any bytes. A request begins with what is asked for, a reply with whether it was done.
using Message = std::vector<std::string>;

/// The environment variable that holds the launcher's port.
constexpr const char* launcherVariable = "VANTRA_TEST_LAUNCHER";

// What can be asked for. A launched program keeps its connection to itself and ends with it.
constexpr std::string_view portRequest = "port";     ///< -> port
constexpr std::string_view folderRequest = "folder"; ///< -> path
constexpr std::string_view runRequest = "run"; ///< limit in ms, input, program -> exit status, output, error
constexpr std::string_view startRequest =
    "start"; ///< file, stop signal, stop limit, death signal, program -> pid
constexpr std::string_view statusRequest = "status"; ///< -> exit status, or nothing while the program runs
constexpr std::string_view signalRequest = "signal"; ///< signal ->
constexpr std::string_view stopRequest = "stop";     ///< -> exit status
constexpr std::string_view outputRequest = "output"; ///< -> output

// The replies: "done" and the results, or "failed" and the reason.
constexpr std::string_view doneReply = "done";
constexpr std::string_view failedReply = "failed";

/// The bytes of a message: the number of texts, and each text after its length, all numbers in a line.
std::string encodeMessage(const Message& message);

/// Reads the bytes of one message.
/// @param readLine answers the next line without its line feed.
/// @param readBytes answers so many bytes.
/// @throws std::runtime_error if a number is none, and what the functions throw.
Message decodeMessage(const std::function<std::string()>& readLine,
                      const std::function<std::string(std::size_t)>& readBytes);

/// A program as the last part of a request: the working directory, the number of arguments, the arguments,
/// and the changes to the environment, as "NAME=value" to set and "NAME" to remove a variable.
void appendProgram(Message& message, const std::vector<std::string>& arguments,
                   const std::string& workingDirectory, const Environment& environment);

/// What appendProgram() has appended.
struct ProgramToLaunch {
    std::vector<std::string> arguments;
    std::string workingDirectory;
    Environment environment;
};

/// @param begin the index of the program's first text.
/// @throws std::runtime_error if the message is too short, or has a number that is none.
ProgramToLaunch programIn(const Message& message, std::size_t begin);

/// @throws std::runtime_error if the text is no decimal number.
long numberIn(std::string_view text);

} // namespace testsupport
