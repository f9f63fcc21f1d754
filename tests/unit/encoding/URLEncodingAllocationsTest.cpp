#include "vantra/URLEncoding.h"

#include "AllocationCount.h"

#include <gtest/gtest.h>

#include <cstddef>

namespace {

using kel::String;

template <class Action>
std::size_t countAllocations(Action action) {
    const std::size_t before = encodingtest::getAllocationCount();
    const String result = action();
    return encodingtest::getAllocationCount() - before;
}

TEST(URLEncodingAllocations, AreOneForAnASCIITextOfUsualLength) {
    const String text = "photo album/2019 summer (1).jpg";
    EXPECT_EQ(countAllocations([&] { return vantra::urlEscape(text, true); }), 1u);
    const String escaped = vantra::urlEscape(text, true);
    EXPECT_EQ(countAllocations([&] { return vantra::urlUnescape(escaped, true); }), 1u);
}

TEST(URLEncodingAllocations, AreOneForALongASCIIText) {
    String text;
    for (int i = 0; i < 1000; ++i) text += "photo album/2019 summer (1).jpg";
    EXPECT_EQ(countAllocations([&] { return vantra::urlEscape(text, true); }), 1u);
    const String escaped = vantra::urlEscape(text, true);
    EXPECT_EQ(countAllocations([&] { return vantra::urlUnescape(escaped, true); }), 1u);
}

} // namespace
