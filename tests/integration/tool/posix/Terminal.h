/// A terminal for the `vantra` command.
#pragma once

#include "support/posix/FileDescriptor.h"

#include <mutex>
#include <string>
#include <thread>

namespace tooltest {

/// A terminal of 80 columns and so many rows, which remembers everything written to it. It is used by opening
/// path(), which nobody should do before the terminal exists or after it is gone.
class Terminal {
public:
    explicit Terminal(unsigned short rows = 24);
    Terminal(const Terminal&) = delete;
    Terminal& operator=(const Terminal&) = delete;
    ~Terminal();

    const std::string& path() const { return path_; }
    /// All bytes so far; the terminal writes a line end as "\r\n".
    std::string written() const;
    /// What the user sees: the rows up to the cursor, after the few control sequences that the command may
    /// use.
    /// @throws std::runtime_error for any other.
    std::string screen() const;

private:
    void readAll();

    testsupport::FileDescriptor master_;
    testsupport::FileDescriptor keeper_; // as long as the other end is open somewhere, reading goes on
    std::string path_;
    mutable std::mutex mutex_; // guards written_
    std::string written_;
    std::thread reader_;
};

} // namespace tooltest
