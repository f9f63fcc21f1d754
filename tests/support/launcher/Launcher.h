/// @file support/launcher/Launcher.h
/// The launcher as its clients see it.
#pragma once

#include "support/launcher/Message.h"
#include "support/TcpClient.h"

#include <chrono>

namespace testsupport {

/// A connection to the launcher under which this program runs.
///
/// Thread safety: one thread at a time.
class Launcher {
public:
    /// @throws std::runtime_error if this program does not run under a launcher.
    Launcher();

    /// Asks for something and waits until it is done.
    /// @return the reply without its first text.
    /// @throws std::runtime_error with the launcher's reason if it cannot be done.
    Message ask(const Message& request);

private:
    TcpClient connection_;
};

} // namespace testsupport
