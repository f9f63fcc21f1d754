/// @file support/SystemError.h
/// The exception for a failed system call.
#pragma once

#include <string>

namespace testsupport {

/// Throws a std::system_error for the current errno.
/// @param action what was tried, as in "cannot " + action.
[[noreturn]] void throwErrno(const std::string& action);

} // namespace testsupport
