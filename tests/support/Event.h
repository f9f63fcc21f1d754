/// @file support/Event.h
/// An event that can be waited for beside sockets.
#pragma once

#include "support/Sockets.h"

namespace testsupport {

/// Happens once and then has happened for good.
///
/// Thread safety: any thread may call any member.
class Event {
public:
    Event();

    /// Lets it happen. To be called once.
    void set();

    /// For waitForAny(): becomes readable when it happens. Nobody may read from it.
    const Socket& socket() const { return socket_; }

private:
    Socket socket_;
};

} // namespace testsupport
