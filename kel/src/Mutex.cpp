#include "kel/Mutex.h"

namespace kel {

CMutex& getGlobalMutex() {
    // Never destroyed: threads and static objects may use it until the very end of the process.
    static CMutex* const mutex = new CMutex();
    return *mutex;
}

} // namespace kel
