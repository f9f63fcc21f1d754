#include "arguments/RangeArgument.h"
#include "Errors.h"

#include <gtest/gtest.h>

using namespace vantra::tool;

namespace {

std::string refusal(const std::string& argument) {
    try {
        const CRangeArgument range("--range", argument);
    } catch (const CUsageError& error) {
        return error.getMessage().toUTF8();
    }
    return "taken";
}

} // namespace

TEST(RangeArgument, HasAFirstByteAndPerhapsALastOne) {
    EXPECT_EQ(CRangeArgument("--range", "5-5").getFirst(), 5);
    EXPECT_EQ(CRangeArgument("--range", "100-").getFirst(), 100);
    EXPECT_FALSE(CRangeArgument("--range", "0-9").isWhole());
    EXPECT_FALSE(CRangeArgument("--range", "1-").isWhole());
    EXPECT_TRUE(CRangeArgument("--range", "0-").isWhole());
    EXPECT_EQ(refusal("0-9223372036854775806"), "taken");
}

TEST(RangeArgument, IsRefusedInAnyOtherForm) {
    for (const char* text : {"", "-", "5", "-5", "9-8", "a-b", "1-2-3", "1--2", "+1-2", " 1-2", "1- 2",
                             "0x1-2", "1-2,4-5", "99999999999999999999-", "0-9223372036854775807"})
        EXPECT_EQ(refusal(text),
                  "--range: '" + std::string(text) + "' is not a range of bytes such as 0-99 or 100-");
    EXPECT_EQ(refusal("\xFC"), "--range: is not valid UTF-8");
}
