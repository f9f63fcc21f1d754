#include "vantra/MultiPartMimeMessage.h"

#include <gtest/gtest.h>

#include <latch>
#include <set>
#include <thread>
#include <vector>

namespace {

using kel::P;
using kel::String;
using vantra::CMultiPartMimeMessage;

TEST(BoundaryThreads, HaveABoundaryForEachMessageOfEachThread) {
    constexpr std::size_t threadCount = 8;
    constexpr std::size_t messageCount = 500;
    std::vector<std::vector<String>> boundaries(threadCount);
    std::latch start(threadCount);
    std::vector<std::thread> threads;
    for (std::vector<String>& own : boundaries) {
        threads.emplace_back([&start, &own] {
            start.arrive_and_wait();
            for (std::size_t i = 0; i < messageCount; ++i) {
                const P<CMultiPartMimeMessage> message = new CMultiPartMimeMessage();
                own.push_back(message->getBoundary());
            }
        });
    }
    for (std::thread& thread : threads) thread.join();
    std::set<String> distinct;
    for (const std::vector<String>& own : boundaries) distinct.insert(own.begin(), own.end());
    EXPECT_EQ(distinct.size(), threadCount * messageCount);
    for (const String& boundary : distinct) {
        EXPECT_GE(boundary.length(), 10U);
        EXPECT_LE(boundary.length(), 32U);
        EXPECT_EQ(boundary.view().find_first_not_of(L"0123456789abcdef"), std::wstring_view::npos)
            << boundary;
    }
}

} // namespace
