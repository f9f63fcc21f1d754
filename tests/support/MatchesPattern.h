/// @file support/MatchesPattern.h
/// Regular expressions as matchers, the same on all systems: MatchesRegex() knows little of them where the
/// system brings none.
///
///     EXPECT_THAT(output, MatchesPattern("[0-9a-f]{16}\n"));
#pragma once

#include <gmock/gmock.h>

#include <regex>
#include <string>

namespace testsupport {

/// Matches a text that the regular expression, as ECMAScript writes them, describes as a whole.
MATCHER_P(MatchesPattern, pattern,
          (negation ? "does not match " : "matches ") + testing::PrintToString(pattern)) {
    return std::regex_match(std::string(arg), std::regex(pattern));
}

} // namespace testsupport
