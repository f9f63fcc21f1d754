/// @file Comparison.h
/// Two ways to do the same, timed in turns.
#pragma once

#include <functional>
#include <string>

namespace bench {

struct ComparisonResult {
    double ratio; ///< the median over the rounds of the library's time by the bare one's
    double
        processorRatio; ///< the same for the processor time of the calling thread, the system's part included
    double librarySeconds; ///< median of a round
    double bareSeconds;    ///< median of a round
};

/// Runs both once to warm up and then alternates them for `rounds` rounds, each going first as often as the
/// other, so that whatever else the machine does falls on both alike.
ComparisonResult compare(int rounds, const std::function<void()>& library, const std::function<void()>& bare);

/// One line: name, times per operation, ratio, and ratio of processor times ("cpu"), which other programs on
/// the machine disturb less.
void printComparison(const std::string& name, const ComparisonResult& result, double operationsPerRound,
                     const std::string& unit, double secondsToUnit);

} // namespace bench
