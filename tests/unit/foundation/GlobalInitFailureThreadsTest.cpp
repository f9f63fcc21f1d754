#include "GlobalInitSeams.h"
#include "vantra/GlobalInit.h"

#include "support/Threads.h"

#include <kel/Error.h>

#include <gtest/gtest.h>

#include <string>
#include <thread>
#include <utility>
#include <vector>

namespace {

using kel::String;
using vantra::CGlobalInit;

TEST(GlobalInitFailureThreads, AllLearnOfTheOneFailure) {
    testsupport::CountDown aboutToCall(THREAD_COUNT);
    std::thread::id starter;
    globalinitseams::setCurlGlobalInitResult(CURLE_FAILED_INIT);
    // No thread is done before every thread is on its way.
    globalinitseams::setCurlGlobalInitHook([&aboutToCall, &starter] {
        starter = std::this_thread::get_id();
        aboutToCall.wait();
    });

    std::vector<std::pair<std::thread::id, String>> results(THREAD_COUNT);
    std::vector<std::thread> threads;
    for (auto& [id, message] : results) {
        threads.emplace_back([&aboutToCall, &id = id, &message = message] {
            id = std::this_thread::get_id();
            aboutToCall.countDown();
            try {
                CGlobalInit::get();
            } catch (const kel::CError& error) {
                message = error.getMessage();
            }
        });
    }
    for (std::thread& thread : threads) thread.join();

    int starters = 0;
    for (const auto& [id, message] : results) {
        if (id == starter) ++starters;
        EXPECT_EQ(message,
                  id == starter ? "curl global init failed" : "Construction of static object has failed.");
    }
    EXPECT_EQ(starters, 1);
    EXPECT_EQ(globalinitseams::getEvents(), (std::vector<std::string>{"OpenSSL", "curl_global_init(3)"}));
}

} // namespace
