/// @file Errors.h
/// How a command ends when it does not succeed.
#pragma once

#include <kel/Error.h>

namespace vantra::tool {

/// What the process answers to its caller.
enum ExitStatus : int {
    ExitSuccess = 0,
    ExitFailure = 1, ///< it was tried, and failed
    ExitUsage = 2,   ///< the arguments cannot be right, whatever the state of servers and files
    ExitInterrupted =
        130 ///< the user interrupted it (Ctrl-C); what shells show for a program that SIGINT ended
};

/// The arguments cannot be right. Anything else that is thrown means failure.
class CUsageError : public kel::CError {
public:
    using kel::CError::CError;
    [[nodiscard]] kel::P<kel::CError> clone() const override { return new CUsageError(*this); }
    [[noreturn]] void throwClone() const override { throw CUsageError(*this); }
};

/// Nobody reads standard output any more, as when `head` has seen enough. Not worth a message.
class CClosedPipeError : public kel::CError {
public:
    CClosedPipeError() : CError("Nobody reads standard output any more.") {}
    [[nodiscard]] kel::P<kel::CError> clone() const override { return new CClosedPipeError(*this); }
    [[noreturn]] void throwClone() const override { throw CClosedPipeError(*this); }
};

} // namespace vantra::tool
