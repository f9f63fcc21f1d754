#include "kel/PosixSelect.h"

#include "Platform.h"

#include <algorithm>

namespace kel {

int CPosixSelect::select(int socketCount, fd_set* read, fd_set* write, fd_set* exception, int64 timeoutMs) {
    const int64 boundedMs = std::min(timeoutMs, platform::maxSocketWaitMs);
    const int ready = platform::waitForSockets(socketCount, read, write, exception, boundedMs);
    if (ready == 0) {
        // An interrupted wait leaves the sets as they were, which would read as "everything is ready".
        for (fd_set* set : {read, write, exception}) {
            if (set) FD_ZERO(set);
        }
    }
    return ready;
}

} // namespace kel
