/// @file support/Outcome.h
/// What came of a program, to be compared as a whole.
///
///     EXPECT_EQ(outcomeOf(runCommand({"echo", "hello"})), (Outcome{0, "hello\n", ""}));
#pragma once

#include "support/Command.h"

#include <gtest/gtest.h>

#include <ostream>
#include <string>
#include <utility>

namespace testsupport {

/// All that a program left behind for its caller.
struct Outcome {
    int exitStatus = -1;
    std::string output;
    std::string error;

    friend bool operator==(const Outcome&, const Outcome&) = default;
};

inline void PrintTo(const Outcome& outcome, std::ostream* stream) {
    *stream << "exit status " << outcome.exitStatus << ", output " << testing::PrintToString(outcome.output)
            << ", error " << testing::PrintToString(outcome.error);
}

inline Outcome outcomeOf(CommandResult result) {
    return {result.exitStatus, std::move(result.standardOutput), std::move(result.standardError)};
}

} // namespace testsupport
