#include "JSONObject.h"

#include <gtest/gtest.h>

#include <cstdint>

using kel::String;
using vantra::tool::CJSONObject;

TEST(JSONObject, WritesItsMembersInTheirOrderOnOneLine) {
    CJSONObject inner;
    inner.setText("x", "y");
    CJSONObject object;
    object.setText("z", "a");
    object.setInteger("a", INT64_MAX);
    object.setReal("real", 0.5);
    object.setBoolean("yes", true);
    object.setNull("nothing");
    object.setTexts("list", {"b", ""});
    object.setObject("object", inner);
    object.setText("z", "again");
    EXPECT_EQ(object.toLine(), "{\"z\":\"again\",\"a\":9223372036854775807,\"real\":0.5,\"yes\":true,"
                               "\"nothing\":null,\"list\":[\"b\",\"\"],\"object\":{\"x\":\"y\"}}\n");
}

TEST(JSONObject, EscapesWhatWouldBreakTheLineOrTheText) {
    CJSONObject object;
    object.setText("\"", String("a\"\\\n\r\t\x1b\x7f\xC3\xBC\xF0\x9F\x98\x80"));
    EXPECT_EQ(object.toLine(), "{\"\\\"\":\"a\\\"\\\\\\n\\r\\t\\u001b\x7f\xC3\xBC\xF0\x9F\x98\x80\"}\n");
}

TEST(JSONObject, HasNothingThatActsOnATerminalIfItIsForOne) {
    CJSONObject object;
    object.setText("x", String("\x7F\xC2\x9B"
                               "2J\xE2\x80\xAE\xC3\xBC\xF0\x9F\x98\x80 ~"));
    EXPECT_EQ(object.toLine(true), "{\"x\":\"\\u007f\\u009b2J\\u202e\\u00fc\\ud83d\\ude00 ~\"}\n");
}

TEST(JSONObject, IsEmptyUntilAMemberIsSet) {
    CJSONObject object;
    EXPECT_TRUE(object.isEmpty());
    EXPECT_EQ(object.toLine(), "{}\n");
    object.setNull("x");
    EXPECT_FALSE(object.isEmpty());
    object.clear();
    EXPECT_EQ(object.toLine(), "{}\n");
}
