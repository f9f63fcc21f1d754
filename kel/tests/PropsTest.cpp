#include "kel/Props.h"

#include <gtest/gtest.h>

#include <map>

namespace {

using kel::CProps;
using kel::String;

using Values = std::map<String, String>;

TEST(Props, AreEmptyAtFirst) {
    const CProps props;
    EXPECT_TRUE(props.isEmpty());
    EXPECT_EQ(props.getMap(), Values());
}

TEST(Props, KeepWhatIsAddedOrderedByName) {
    CProps props;
    props.add("url", "https://example.org/ä").add("code", "404").add("", "nameless").add("empty", "");
    EXPECT_FALSE(props.isEmpty());
    EXPECT_EQ(props.getMap(),
              (Values{{"", "nameless"}, {"code", "404"}, {"empty", ""}, {"url", "https://example.org/ä"}}));
    EXPECT_EQ(props.getMap().begin()->first, "");
}

TEST(Props, ReplaceTheValueOfANameThatIsThere) {
    CProps props;
    props.add("code", "404").add("code", "500");
    EXPECT_EQ(props.getMap(), (Values{{"code", "500"}}));
}

TEST(Props, AddOnlyWhereTheConditionHolds) {
    CProps props;
    props.addCond(false, "a", "1").addCond(true, "b", "2").addCond(false, "b", "3");
    EXPECT_EQ(props.getMap(), (Values{{"b", "2"}}));
}

TEST(Props, LookUpValuesByExactName) {
    const CProps props = CProps().add("code", "404").add("empty", "");
    EXPECT_EQ(props.lookup("code"), "404");
    EXPECT_EQ(props.lookup("code", "absent"), "404");
    EXPECT_EQ(props.lookup("empty", "absent"), "");
    EXPECT_EQ(props.lookup("Code"), "");
    EXPECT_EQ(props.lookup("Code", "absent"), "absent");
    EXPECT_TRUE(props.contains("code"));
    EXPECT_TRUE(props.contains("empty"));
    EXPECT_FALSE(props.contains("Code"));
}

TEST(Props, CompareByTheirEntries) {
    EXPECT_EQ(CProps().add("a", "1").add("b", "2"), CProps().add("b", "2").add("a", "1"));
    EXPECT_FALSE(CProps().add("a", "1") == CProps().add("a", "2"));
    EXPECT_FALSE(CProps().add("a", "1") == CProps());
}

} // namespace
