/// @file support/Environment.h
/// What a started program finds in its environment.
#pragma once

#include <map>
#include <optional>
#include <string>

namespace testsupport {

/// Changes to the environment of a program, by variable: a value to set, or nothing to remove the variable.
using Environment = std::map<std::string, std::optional<std::string>>;

} // namespace testsupport
