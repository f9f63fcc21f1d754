/// A console for the `vantra` command.
#pragma once

#include "support/ChildProcess.h"
#include "support/TempDir.h"

#include <string>
#include <vector>

namespace tooltest {

/// A console of 200 columns and 24 rows on which a script runs. "$TOOL" is the program, "$1" the first
/// argument. What Wine shows goes through a terminal of the system underneath, so that this is what a user
/// would see.
class Console {
public:
    Console(const std::string& script, const std::vector<std::string>& arguments);

    /// The rows down to the last that is not empty, without blanks at their ends.
    std::string screen() const;
    /// Waits until the screen matches a regular expression.
    /// @return what it shows then, or in the end.
    std::string waitForScreen(const std::string& pattern) const;

    /// Types text that has no control characters.
    void type(const std::string& text) const;
    /// Presses a key, such as "Enter" or "C-c" for Ctrl-C.
    void press(const std::string& key) const;

private:
    std::string command(const std::vector<std::string>& arguments) const;

    testsupport::TempDir folder_;
    testsupport::ChildProcess multiplexer_;
};

} // namespace tooltest
