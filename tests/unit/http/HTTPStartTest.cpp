#include <curl/curl.h>

#include "vantra/HeaderAssembler.h"
#include "vantra/NetHeaders.h"
#include "vantra/NetStringList.h"

#include <gtest/gtest.h>

namespace {

int starts = 0;

} // namespace

extern "C" CURLcode __real_curl_global_init(long flags);
extern "C" CURLcode __wrap_curl_global_init(long flags) {
    ++starts;
    return __real_curl_global_init(flags);
}

namespace {

TEST(HTTPStart, HappensWithTheFirstHeaderCollection) {
    vantra::CNetStringList list;
    list.add("a");
    vantra::CHeaderAssembler assembler;
    assembler.handleHeaderLine("A: b\r\n");
    EXPECT_EQ(starts, 0);

    const vantra::CNetHeaders first;
    EXPECT_EQ(starts, 1);
    const vantra::CNetHeaders second;
    EXPECT_EQ(starts, 1);
}

} // namespace
