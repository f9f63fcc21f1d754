/// @file RefusedSecret.h
/// Secrets on the command line, where the other users of the machine can read them.
#pragma once

#include <string>

namespace CLI { // NOLINT(readability-identifier-naming)
class App;
}

namespace vantra::tool {

/// Adds an option that help does not list and that is refused with a text that tells of the better one, so
/// that the value of somebody's guess is not taken for something else and shown in an error.
void addRefusedSecret(CLI::App& verb, const std::string& option, const std::string& fileOption);

} // namespace vantra::tool
