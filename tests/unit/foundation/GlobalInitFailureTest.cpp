#include "GlobalInitSeams.h"
#include "vantra/AsyncNetRequestManager.h"
#include "vantra/GlobalInit.h"
#include "vantra/NetHeaders.h"
#include "vantra/NetRequest.h"

#include <kel/Error.h>

#include <gtest/gtest.h>

#include <cstdlib>
#include <future>
#include <iostream>
#include <new>
#include <string>
#include <typeinfo>
#include <vector>

namespace {

using kel::CError;
using kel::P;
using kel::String;
using vantra::CAsyncNetRequestManager;
using vantra::CGlobalInit;
using vantra::CNetHeaders;
using vantra::CNetRequest;

/// The error that `action` throws, or null.
template <class Action>
P<CError> errorOf(Action action) {
    try {
        action();
        return nullptr;
    } catch (const CError& error) {
        return error.clone();
    }
}

void expectPlainError(const P<CError>& thrown, const String& message) {
    ASSERT_NE(thrown.get(), nullptr);
    const CError& error = *thrown;
    EXPECT_EQ(typeid(error), typeid(CError));
    EXPECT_EQ(error.getMessage(), message);
    EXPECT_EQ(error.getCodeDomain(), "");
    EXPECT_EQ(error.getCode(), -1);
    EXPECT_TRUE(error.getParams().isEmpty());
    EXPECT_EQ(error.getCause().get(), nullptr);
}

/// Libcurl cannot be started, and one call has found out.
class GlobalInitFailure : public testing::Test {
protected:
    static void SetUpTestSuite() {
        globalinitseams::setCurlGlobalInitResult(CURLE_FAILED_INIT);
        firstError = errorOf([] { CGlobalInit::get(); });
    }
    static void TearDownTestSuite() { firstError = nullptr; }

    static inline P<CError> firstError;
};

TEST_F(GlobalInitFailure, IsToldToTheCallerWhoStartedTheLibrary) {
    expectPlainError(firstError, "curl global init failed");
}

TEST_F(GlobalInitFailure, IsToldToEveryLaterCaller) {
    for (int i = 0; i < 3; ++i) {
        expectPlainError(errorOf([] { CGlobalInit::get(); }), "Construction of static object has failed.");
        expectPlainError(errorOf([] { CGlobalInit::ensureInitialized(); }),
                         "Construction of static object has failed.");
    }
}

TEST_F(GlobalInitFailure, IsToldToOtherThreads) {
    const P<CError> error =
        std::async(std::launch::async, [] { return errorOf([] { CGlobalInit::get(); }); }).get();
    expectPlainError(error, "Construction of static object has failed.");
}

TEST_F(GlobalInitFailure, PassesOutOfTheHeaderCollectionsConstructor) {
    expectPlainError(errorOf([] { const CNetHeaders headers; }), "Construction of static object has failed.");
    expectPlainError(errorOf([] { const P<CNetHeaders> headers = new CNetHeaders(); }),
                     "Construction of static object has failed.");
}

TEST_F(GlobalInitFailure, PassesOutOfTheConstructorsOfRequestAndManager) {
    expectPlainError(errorOf([] { const P<CNetRequest> request = new CNetRequest(); }),
                     "Construction of static object has failed.");
    expectPlainError(
        errorOf([] { const P<CAsyncNetRequestManager> manager = new CAsyncNetRequestManager(); }),
        "Construction of static object has failed.");
}

TEST_F(GlobalInitFailure, IsFinal) {
    errorOf([] { CGlobalInit::get(); });
    errorOf([] { CGlobalInit::get(); });
    EXPECT_EQ(globalinitseams::getEvents(), (std::vector<std::string>{"OpenSSL", "curl_global_init(3)"}));
}

/// What a process of its own says.
template <class Action>
[[noreturn]] void exitWithErrorOf(Action action) {
    const P<CError> error = errorOf(action);
    std::cerr << (error ? error->getMessage() : String("no error")) << "\n";
    for (const std::string& event : globalinitseams::getEvents()) std::cerr << event << "\n";
    std::exit(0);
}

class GlobalInitFirstFailure : public testing::Test {
protected:
    static void SetUpTestSuite() { GTEST_FLAG_SET(death_test_style, "threadsafe"); }
};

TEST_F(GlobalInitFirstFailure, PassesOutOfTheHeaderCollectionsConstructor) {
    EXPECT_EXIT(
        {
            globalinitseams::setCurlGlobalInitResult(CURLE_OUT_OF_MEMORY);
            exitWithErrorOf([] { const CNetHeaders headers; });
        },
        testing::ExitedWithCode(0), "^curl global init failed\nOpenSSL\ncurl_global_init\\(3\\)\n$");
}

TEST_F(GlobalInitFirstFailure, PassesOutOfTheRequestsConstructor) {
    EXPECT_EXIT(
        {
            globalinitseams::setCurlGlobalInitResult(CURLE_OUT_OF_MEMORY);
            exitWithErrorOf([] { const P<CNetRequest> request = new CNetRequest(); });
        },
        testing::ExitedWithCode(0), "^curl global init failed\nOpenSSL\ncurl_global_init\\(3\\)\n$");
}

TEST_F(GlobalInitFirstFailure, PassesOutOfTheManagersConstructor) {
    EXPECT_EXIT(
        {
            globalinitseams::setCurlGlobalInitResult(CURLE_OUT_OF_MEMORY);
            exitWithErrorOf([] { const P<CAsyncNetRequestManager> manager = new CAsyncNetRequestManager(); });
        },
        testing::ExitedWithCode(0), "^curl global init failed\nOpenSSL\ncurl_global_init\\(3\\)\n$");
}

TEST_F(GlobalInitFirstFailure, OfOpenSSLLeavesLibcurlAlone) {
    EXPECT_EXIT(
        {
            globalinitseams::setOpenSSLFails();
            exitWithErrorOf([] { CGlobalInit::get(); });
        },
        testing::ExitedWithCode(0), "^OpenSSL initialization failed\\.\nOpenSSL\n$");
}

TEST_F(GlobalInitFirstFailure, OfOpenSSLIsFinalToo) {
    EXPECT_EXIT(
        {
            globalinitseams::setOpenSSLFails();
            errorOf([] { CGlobalInit::get(); });
            exitWithErrorOf([] { CGlobalInit::get(); });
        },
        testing::ExitedWithCode(0), "^Construction of static object has failed\\.\nOpenSSL\n$");
}

/// An error that cannot be copied to the heap.
class CLargeError : public CError {
public:
    CLargeError() : CError("too large to copy") {}
    P<CError> clone() const override { throw std::bad_alloc(); }
};

TEST_F(GlobalInitFirstFailure, ThatCannotBeKeptIsFinalToo) {
    EXPECT_EXIT(
        {
            globalinitseams::setOpenSSLHook([] { throw CLargeError(); });
            // Nobody is made to wait for an instance that will never come.
            globalinitseams::setThreadYieldHook([](bool) { std::exit(1); });
            try {
                CGlobalInit::get();
            } catch (const std::bad_alloc&) {
                std::cerr << "out of memory\n";
            }
            exitWithErrorOf([] { CGlobalInit::get(); });
        },
        testing::ExitedWithCode(0),
        "^out of memory\nConstruction of static object has failed\\.\nOpenSSL\n$");
}

} // namespace
