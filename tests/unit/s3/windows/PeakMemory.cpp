#include "PeakMemory.h"

#include <gtest/gtest.h>

#include <windows.h>

#include <psapi.h>

namespace vantra::test {

long getPeakKiB() {
    PROCESS_MEMORY_COUNTERS counters{};
    EXPECT_TRUE(::K32GetProcessMemoryInfo(::GetCurrentProcess(), &counters, sizeof(counters)));
    EXPECT_GT(counters.PeakWorkingSetSize, 0U);
    return static_cast<long>(counters.PeakWorkingSetSize / 1024);
}

} // namespace vantra::test
