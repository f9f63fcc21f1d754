#include "Comparison.h"

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <ctime>
#include <vector>

namespace bench {

namespace {

struct Times {
    double seconds;
    double processorSeconds;
};

double getProcessorSeconds() {
    timespec time{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
    return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_nsec) * 1e-9;
}

Times measure(const std::function<void()>& work) {
    const double processorStart = getProcessorSeconds();
    const auto start = std::chrono::steady_clock::now();
    work();
    const std::chrono::duration<double> time = std::chrono::steady_clock::now() - start;
    return {time.count(), getProcessorSeconds() - processorStart};
}

double median(std::vector<double> values) {
    std::sort(values.begin(), values.end());
    const std::size_t middle = values.size() / 2;
    return values.size() % 2 == 1 ? values[middle] : (values[middle - 1] + values[middle]) / 2;
}

} // namespace

ComparisonResult compare(int rounds, const std::function<void()>& library,
                         const std::function<void()>& bare) {
    library();
    bare();
    std::vector<double> ratios;
    std::vector<double> processorRatios;
    std::vector<double> libraryTimes;
    std::vector<double> bareTimes;
    for (int round = 0; round < rounds; ++round) {
        const bool isLibraryFirst = round % 2 == 0;
        const Times first = measure(isLibraryFirst ? library : bare);
        const Times second = measure(isLibraryFirst ? bare : library);
        const Times& libraryTime = isLibraryFirst ? first : second;
        const Times& bareTime = isLibraryFirst ? second : first;
        libraryTimes.push_back(libraryTime.seconds);
        bareTimes.push_back(bareTime.seconds);
        ratios.push_back(libraryTime.seconds / bareTime.seconds);
        processorRatios.push_back(libraryTime.processorSeconds / bareTime.processorSeconds);
    }
    return {median(ratios), median(processorRatios), median(libraryTimes), median(bareTimes)};
}

void printComparison(const std::string& name, const ComparisonResult& result, double operationsPerRound,
                     const std::string& unit, double secondsToUnit) {
    std::printf("%-28s vantra %9.3f %s   libcurl %9.3f %s   ratio %.3f   cpu %.3f\n", name.c_str(),
                result.librarySeconds / operationsPerRound * secondsToUnit, unit.c_str(),
                result.bareSeconds / operationsPerRound * secondsToUnit, unit.c_str(), result.ratio,
                result.processorRatio);
    std::fflush(stdout);
}

} // namespace bench
