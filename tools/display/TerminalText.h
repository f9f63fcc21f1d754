/// @file TerminalText.h
/// Text of unknown origin on the user's terminal.
#pragma once

#include <kel/String.h>

#include <string>

namespace vantra::tool {

/// One line without its end, in UTF-8, that does nothing to a terminal but show up: white space with a line
/// break or tab in it becomes one blank, every other control character and those that turn the direction of
/// writing become U+FFFD.
[[nodiscard]] std::string toTerminalLine(const kel::String& text);

/// The text, or its first `maxLength` elements and "..." when it is longer.
[[nodiscard]] kel::String shorten(const kel::String& text, std::size_t maxLength);

/// Writes "vantra: ", the text as toTerminalLine() gives it, and a line end to standard error. Passwords in
/// URLs are left out (see hidePasswords), and so is the middle of a text of more than 4000 elements. Never
/// throws.
void writeMessage(const kel::String& text) noexcept;

} // namespace vantra::tool
