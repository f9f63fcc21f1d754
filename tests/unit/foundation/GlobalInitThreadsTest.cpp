#include "GlobalInitSeams.h"
#include "vantra/GlobalInit.h"

#include "support/Threads.h"

#include <gtest/gtest.h>

#include <string>
#include <thread>
#include <vector>

namespace {

using vantra::CGlobalInit;

TEST(GlobalInitThreads, AllGetTheSameInstanceAfterOneStart) {
    testsupport::CountDown aboutToCall(THREAD_COUNT);
    // No thread is done before every thread is on its way.
    globalinitseams::setCurlGlobalInitHook([&aboutToCall] { aboutToCall.wait(); });

    std::vector<const CGlobalInit*> instances(THREAD_COUNT);
    std::vector<std::thread> threads;
    for (const CGlobalInit*& instance : instances) {
        threads.emplace_back([&aboutToCall, &instance] {
            aboutToCall.countDown();
            instance = CGlobalInit::get();
        });
    }
    for (std::thread& thread : threads) thread.join();

    EXPECT_NE(instances[0], nullptr);
    EXPECT_EQ(instances, std::vector<const CGlobalInit*>(THREAD_COUNT, instances[0]));
    EXPECT_EQ(instances[0], CGlobalInit::get().get());
    EXPECT_EQ(globalinitseams::getEvents(),
              (std::vector<std::string>{"OpenSSL", "curl_global_init(3)", "addDisposeFunc"}));
}

} // namespace
