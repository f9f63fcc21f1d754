/// @file kel/PosixSelect.h
/// Waiting for sockets.
#pragma once

#include "kel/Export.h"
#include "kel/Int64.h"

#include "kel/SocketSets.h"

namespace kel {

/// Thread safety: any thread.
class KEL_API CPosixSelect {
public:
    /// select(2) with a timeout in milliseconds (negative: without limit; more than about three years count
    /// as that much). An interruption by a signal ends the wait as a timeout does. Each set may be null;
    /// without any socket the call only waits.
    /// @param socketCount one more than the greatest socket number in the sets; not looked at on Windows.
    /// @return the number of ready sockets, which the sets then hold; 0 when the time is up, with the sets
    /// empty; -1 on failure, with the sets as they were and the reason in errno or the system's equivalent.
    static int select(int socketCount, fd_set* read, fd_set* write, fd_set* exception, int64 timeoutMs);
};

} // namespace kel
