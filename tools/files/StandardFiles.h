/// @file StandardFiles.h
/// The door to what the system gives a program at its start: arguments, standard input, output and error.
/// posix/ and windows/ hold one implementation each.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace vantra::tool {

/// The arguments without the program's name. On Windows they are UTF-8; elsewhere as the system gives them,
/// which need not be UTF-8.
[[nodiscard]] std::vector<std::string> getArguments(int argc, char** argv);

/// To be called before anything is opened. A closed pipe gives an error from then on instead of ending the
/// process, bytes go out as they are, and no file or connection opened later can pass for a standard file
/// that was closed.
void prepareStandardFiles() noexcept;

/// Reads up to so many bytes, unbuffered; waits until there are some. Gives up when the user asked to stop
/// (see Interrupt.h).
/// @param count how many were read; 0 at the end.
/// @return 0, or a value of errno.
[[nodiscard]] int readStandardInput(void* buffer, std::size_t maxLength, std::size_t& count) noexcept;

/// Writes all of the bytes at once, unbuffered. Gives up when the user asked to stop (see Interrupt.h).
/// @return 0, or a value of errno; EPIPE when nobody reads the output any more.
[[nodiscard]] int writeStandardOutput(std::string_view bytes) noexcept;

/// Writes in one piece where the system allows it, so that lines of several threads stay whole. A failure is
/// not reported: there is no place left for it.
void writeStandardError(std::string_view bytes) noexcept;

} // namespace vantra::tool
