/// @file RunOnThreads.h
/// Threads that start together.
#pragma once

#include <latch>
#include <thread>
#include <vector>

namespace proxytest {

constexpr int threadCount = 8;

/// Runs `work(number)` on eight threads at once and waits for them.
template <class Work>
void runOnThreads(Work work) {
    std::latch start(threadCount);
    std::vector<std::thread> threads;
    for (int number = 0; number < threadCount; ++number) {
        threads.emplace_back([&start, &work, number] {
            start.arrive_and_wait();
            work(number);
        });
    }
    for (std::thread& thread : threads) thread.join();
}

} // namespace proxytest
