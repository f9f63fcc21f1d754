/// @file CommandLine.h
/// From the arguments to the exit status.
#pragma once

#include "Errors.h"
#include "Verb.h"

#include <string>
#include <vector>

namespace vantra::tool {

/// Runs the verb that the arguments name. Failures are written to standard error, one line each.
/// @param arguments without the program's name.
[[nodiscard]] ExitStatus runCommandLine(std::vector<std::string> arguments, VerbAdder addVerbs) noexcept;

} // namespace vantra::tool
