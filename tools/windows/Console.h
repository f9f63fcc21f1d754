/// @file Console.h
/// A console of Windows, and what a user types on it.
#pragma once

#include <cstddef>

#include <windows.h>

namespace vantra::tool {

/// Whether a file is a console, for input or output.
[[nodiscard]] bool isConsole(HANDLE file) noexcept;

/// Reads what the user types, as UTF-8, whatever the console's code page; waits for a line. Ctrl-Z at the
/// start of a line is the end. One thread at a time.
/// @param maxLength at least 1.
/// @param count how many bytes were read; 0 at the end.
/// @return 0, or a value of errno; EINTR after Ctrl-C, which is noted by then (see Interrupt.h).
[[nodiscard]] int readConsole(HANDLE console, char* buffer, std::size_t maxLength,
                              std::size_t& count) noexcept;

} // namespace vantra::tool
