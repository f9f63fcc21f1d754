#include "PeakMemory.h"

#include <sys/resource.h>

namespace vantra::test {

long getPeakKiB() {
    rusage usage{};
    getrusage(RUSAGE_SELF, &usage);
    return usage.ru_maxrss;
}

} // namespace vantra::test
