/// @file HeaderArgument.h
/// A header field given as "Name: value".
#pragma once

#include <kel/String.h>

#include <string>

namespace vantra::tool {

struct HeaderArgument {
    kel::String name;
    kel::String value; ///< may be empty: libcurl then leaves out its own header of that name
};

/// Splits at the first ":"; white space around both parts is dropped.
/// @param option the option's name, for the error's text.
/// @throws CUsageError for control characters, a missing ":" and a name that is empty or no token (RFC 9110
/// §5.6.2).
[[nodiscard]] HeaderArgument parseHeaderArgument(const std::string& option, const std::string& argument);

} // namespace vantra::tool
