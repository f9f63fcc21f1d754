#include "display/ByteCount.h"

#include <gtest/gtest.h>

#include <cstdint>

using vantra::tool::formatByteCount;

TEST(ByteCount, TakesTheGreatestUnitThatLeavesAWholeNumber) {
    EXPECT_EQ(formatByteCount(0), "0 B");
    EXPECT_EQ(formatByteCount(1023), "1023 B");
    EXPECT_EQ(formatByteCount(1024), "1.0 KiB");
    EXPECT_EQ(formatByteCount(1536), "1.5 KiB");
    EXPECT_EQ(formatByteCount(20 << 20), "20.0 MiB");
    EXPECT_EQ(formatByteCount(std::int64_t{3} << 30), "3.0 GiB");
    EXPECT_EQ(formatByteCount(std::int64_t{3} << 40), "3.0 TiB");
    EXPECT_EQ(formatByteCount(std::int64_t{3} << 50), "3.0 PiB");
    EXPECT_EQ(formatByteCount(INT64_MAX), "8.0 EiB");
}

TEST(ByteCount, IsRoundedToOneDecimal) {
    EXPECT_EQ(formatByteCount(1024 + 51), "1.0 KiB");
    EXPECT_EQ(formatByteCount(1024 + 52), "1.1 KiB");
    EXPECT_EQ(formatByteCount(1023 * 1024 + 921), "1023.9 KiB");
    EXPECT_EQ(formatByteCount(1024 * 1024 - 1), "1.0 MiB");
}
