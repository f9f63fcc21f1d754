#include "Comparison.h"

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <vector>

namespace bench {

namespace {

double measure(const std::function<void()>& work) {
    const auto start = std::chrono::steady_clock::now();
    work();
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
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
    std::vector<double> libraryTimes;
    std::vector<double> bareTimes;
    for (int round = 0; round < rounds; ++round) {
        double libraryTime = 0;
        double bareTime = 0;
        if (round % 2 == 0) {
            libraryTime = measure(library);
            bareTime = measure(bare);
        } else {
            bareTime = measure(bare);
            libraryTime = measure(library);
        }
        libraryTimes.push_back(libraryTime);
        bareTimes.push_back(bareTime);
        ratios.push_back(libraryTime / bareTime);
    }
    return {median(ratios), median(libraryTimes), median(bareTimes)};
}

void printComparison(const std::string& name, const ComparisonResult& result, double operationsPerRound,
                     const std::string& unit, double secondsToUnit) {
    std::printf("%-28s vantra %9.3f %s   libcurl %9.3f %s   ratio %.3f\n", name.c_str(),
                result.librarySeconds / operationsPerRound * secondsToUnit, unit.c_str(),
                result.bareSeconds / operationsPerRound * secondsToUnit, unit.c_str(), result.ratio);
    std::fflush(stdout);
}

} // namespace bench
