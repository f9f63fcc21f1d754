#include "vantra/MultiPartMimeMessage.h"

#include "support/Threads.h"

#include <gtest/gtest.h>

#include <set>
#include <vector>

namespace {

using kel::P;
using kel::String;
using testsupport::runOnThreads;
using testsupport::threadCount;
using vantra::CMultiPartMimeMessage;

TEST(BoundaryThreads, HaveABoundaryForEachMessageOfEachThread) {
    constexpr std::size_t messageCount = 500;
    std::vector<std::vector<String>> boundaries(threadCount);
    runOnThreads([&boundaries](int number) {
        for (std::size_t i = 0; i < messageCount; ++i) {
            const P<CMultiPartMimeMessage> message = new CMultiPartMimeMessage();
            boundaries[static_cast<std::size_t>(number)].push_back(message->getBoundary());
        }
    });
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
