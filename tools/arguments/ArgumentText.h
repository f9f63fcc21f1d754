/// @file ArgumentText.h
/// The text of a command-line argument.
#pragma once

#include <kel/String.h>

#include <string>

namespace vantra::tool {

/// @param name of the option or argument, for the error's text.
/// @throws CUsageError "NAME: is not valid UTF-8".
[[nodiscard]] kel::String toArgumentText(const std::string& name, const std::string& argument);

/// Whether a control character is among them: C0 (line breaks and tabs included), DEL or C1.
[[nodiscard]] bool hasControlCharacters(const kel::String& text);

/// @throws CUsageError "NAME: must not contain line breaks or other control characters".
void refuseControlCharacters(const std::string& name, const kel::String& text);

} // namespace vantra::tool
