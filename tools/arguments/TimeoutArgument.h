/// @file TimeoutArgument.h
/// A length of time given in seconds.
#pragma once

#include <kel/Time.h>

#include <string>

namespace vantra::tool {

/// Reads a decimal number of seconds above 0 and up to 4000000 (libcurl counts milliseconds in 32 bits). The
/// result is rounded up to whole milliseconds, because libcurl would take 0 for no limit.
/// @param option the option's name, for the error's text.
/// @throws CUsageError for anything else.
[[nodiscard]] kel::CTimeSpan parseTimeoutArgument(const std::string& option, const std::string& argument);

} // namespace vantra::tool
