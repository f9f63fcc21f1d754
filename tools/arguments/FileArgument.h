/// @file FileArgument.h
/// A file named on the command line.
#pragma once

#include <kel/String.h>

#include <string>

namespace vantra::tool {

/// @param option the option's name, for the error's text.
/// @throws CUsageError for a name that is empty, not UTF-8, or one that only a folder can
/// have: with a separator, "." or ".." at its end.
[[nodiscard]] kel::String parseFileArgument(const std::string& option, const std::string& argument);

} // namespace vantra::tool
