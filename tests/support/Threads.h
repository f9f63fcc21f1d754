/// @file support/Threads.h
/// Threads that start together.
#pragma once

#include <condition_variable>
#include <cstddef>
#include <mutex>
#include <thread>
#include <vector>

namespace testsupport {

/// Holds back whoever waits until it has been counted down to 0.
///
/// std::latch does the same; but where the system has no futexes, as Windows, the one of libstdc++ 12 now and
/// then misses the wake-up.
///
/// Thread safety: any thread may call any member.
class CountDown {
public:
    explicit CountDown(std::size_t count) : count_(count) {}

    /// Not more often than the count says.
    void countDown() {
        const std::lock_guard lock(mutex_);
        if (--count_ == 0) isDown_.notify_all();
    }

    void wait() {
        std::unique_lock lock(mutex_);
        isDown_.wait(lock, [this] { return count_ == 0; });
    }

    void arriveAndWait() {
        countDown();
        wait();
    }

private:
    std::mutex mutex_;
    std::condition_variable isDown_;
    std::size_t count_;
};

/// How many threads runOnThreads() starts.
constexpr int threadCount = 8;

/// Runs `work(number)` on eight threads that start together, and waits for them. The numbers begin at 0.
template <class Work>
void runOnThreads(const Work& work) {
    CountDown start(threadCount);
    std::vector<std::thread> threads;
    for (int number = 0; number < threadCount; ++number) {
        threads.emplace_back([&start, &work, number] {
            start.arriveAndWait();
            work(number);
        });
    }
    for (std::thread& thread : threads) thread.join();
}

} // namespace testsupport
