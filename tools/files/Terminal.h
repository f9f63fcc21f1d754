/// @file Terminal.h
/// The door to the user's terminal. posix/ and windows/ hold one implementation each.
#pragma once

namespace vantra::tool {

struct TerminalSize {
    int columns = 80;
    int rows = 24;
};

/// Whether the user sees standard error on a terminal that moves its cursor on request (ECMA-48).
[[nodiscard]] bool isStandardErrorTerminal() noexcept;

/// Whether the user sees standard output on a terminal.
[[nodiscard]] bool isStandardOutputTerminal() noexcept;

/// The present size of the terminal on standard error; 80 by 24 where it cannot be had.
[[nodiscard]] TerminalSize getStandardErrorSize() noexcept;

} // namespace vantra::tool
