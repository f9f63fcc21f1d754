#include "sigil/OpenSSLInit.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>
#include <thread>
#include <vector>

#include <openssl/err.h>
#include <openssl/evp.h>

namespace {

TEST(OpenSSLInit, MayBeCalledAgainAndByManyThreads) {
    std::vector<std::thread> threads;
    for (int i = 0; i < 4; ++i) threads.emplace_back([] { sigil::COpenSSLInit::ensureInitialized(); });
    for (std::thread& thread : threads) thread.join();
    EXPECT_NO_THROW(sigil::COpenSSLInit::ensureInitialized());
}

TEST(OpenSSLInit, LoadsTheErrorTexts) {
    sigil::COpenSSLInit::ensureInitialized();
    EXPECT_STREQ(ERR_lib_error_string(ERR_PACK(ERR_LIB_EVP, 0, 0)), "digital envelope routines");
    EXPECT_STREQ(ERR_reason_error_string(ERR_PACK(ERR_LIB_EVP, 0, EVP_R_NO_KEY_SET)), "no key set");
}

/// Exit handlers run in the reverse order of their registration, so this one runs after any of OpenSSL's.
void computeAtExit() {
    unsigned char digest[EVP_MAX_MD_SIZE];
    unsigned int size = 0;
    const bool works = EVP_Digest("abc", 3, digest, &size, EVP_sha1(), nullptr) == 1 && size == 20;
    std::fputs(works ? "works" : "is gone", stderr);
}

void exitAfterInitialization() {
    std::atexit(&computeAtExit);
    sigil::COpenSSLInit::ensureInitialized();
    std::exit(0);
}

TEST(OpenSSLInitDeathTest, LeavesOpenSSLUsableUntilTheVeryEndOfTheProcess) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    EXPECT_EXIT(exitAfterInitialization(), testing::ExitedWithCode(0), testing::Eq("works"));
}

} // namespace
