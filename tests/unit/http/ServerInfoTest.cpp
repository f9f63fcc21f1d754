#include "vantra/ServerInfo.h"

#include <kel/P.h>

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <type_traits>
#include <utility>

namespace {

using kel::P;
using kel::String;
using kel::TMap;
using vantra::CHTTPServerHeader;
using vantra::CServerInfo;

using HeaderMap = TMap<String, String>;
using Versions = TMap<String, String>;

static_assert(std::is_base_of_v<kel::CBase, CServerInfo>);
static_assert(std::is_base_of_v<kel::CBase, CHTTPServerHeader>);
// A copy, since another thread may change the record meanwhile.
static_assert(std::is_same_v<decltype(std::declval<const CServerInfo&>().getServerHeader()), String>);
static_assert(std::is_same_v<decltype(std::declval<const CHTTPServerHeader&>().getComponentVersionMap()),
                             const Versions&>);

Versions versionsOf(const String& header) { return CHTTPServerHeader(header).getComponentVersionMap(); }

bool areRangesBrokenFor(const String& server) {
    CServerInfo info;
    info.updateFromHeaders({{"server", server}});
    EXPECT_EQ(info.getServerHeader(), server);
    EXPECT_FALSE(info.isGetBroken());
    EXPECT_FALSE(info.isPutBroken());
    return info.areGetRangesBroken();
}

TEST(ServerInfo, KnowsNothingAtFirst) {
    const P<CServerInfo> info = new CServerInfo();
    EXPECT_EQ(info->getServerHeader(), "");
    EXPECT_FALSE(info->isGetBroken());
    EXPECT_FALSE(info->isPutBroken());
    EXPECT_FALSE(info->areGetRangesBroken());
}

TEST(ServerInfo, StaysEmptyUntilAServerNamesItself) {
    CServerInfo info;
    info.updateFromHeaders({});
    info.updateFromHeaders({{"date", "today"}});
    info.updateFromHeaders({{"server", ""}});
    EXPECT_EQ(info.getServerHeader(), "");
    EXPECT_FALSE(info.areGetRangesBroken());
    info.updateFromHeaders({{"date", "today"}, {"server", "DAV/2 Python/3.6"}});
    EXPECT_EQ(info.getServerHeader(), "DAV/2 Python/3.6");
    EXPECT_TRUE(info.areGetRangesBroken());
}

TEST(ServerInfo, KeepsTheFirstServerHeader) {
    CServerInfo info;
    info.updateFromHeaders({{"server", "Srv/1"}});
    info.updateFromHeaders({{"server", "DAV/2 Python/3.6"}});
    EXPECT_EQ(info.getServerHeader(), "Srv/1");
    EXPECT_FALSE(info.areGetRangesBroken());
}

TEST(ServerInfo, KeepsTheRangesFlag) {
    CServerInfo info;
    info.updateFromHeaders({{"server", "DAV/2 Python/3.6"}});
    info.updateFromHeaders({{"server", "Srv/1"}});
    info.updateFromHeaders({});
    EXPECT_EQ(info.getServerHeader(), "DAV/2 Python/3.6");
    EXPECT_TRUE(info.areGetRangesBroken());
}

TEST(ServerInfo, LooksForTheLowerCasedNameOnly) {
    CServerInfo info;
    info.updateFromHeaders({{"Server", "Srv/1"}});
    EXPECT_EQ(info.getServerHeader(), "");
}

TEST(ServerInfo, KeepsTheHeaderAsItIs) {
    const String header(L"  Stra\u00DFe/1 \t(\u20AC) ");
    CServerInfo info;
    info.updateFromHeaders({{"server", header}});
    EXPECT_EQ(info.getServerHeader(), header);
}

TEST(ServerInfo, DistrustsRangesOfServersWithVersionsOfBothDAVAndPython) {
    EXPECT_TRUE(areRangesBrokenFor("DAV/2 Python/3.6"));
    EXPECT_TRUE(areRangesBrokenFor("Python/3.6 Srv/2.4 (Unix) DAV/2"));
}

TEST(ServerInfo, TrustsRangesOfAllOtherServers) {
    for (const char* const server : {"DAV/2", "Python/3.6", "DAV Python", "DAV/2 Python", "DAV Python/3.6",
                                     "DAV/ Python/3.6", "dav/2 python/3.6", "DAV/2,Python/3.6",
                                     "DAV/2 xPython/3.6", "DAV/2 Python/3.6 DAV", "Srv/2.4 (Unix)", " "})
        EXPECT_FALSE(areRangesBrokenFor(server)) << server;
}

TEST(ServerInfo, SharesOneRecordThroughPointers) {
    P<CServerInfo> info = new CServerInfo();
    const P<CServerInfo> other = info;
    info->updateFromHeaders({{"server", "Srv/1"}});
    info = nullptr;
    EXPECT_EQ(other->getServerHeader(), "Srv/1");
}

TEST(HTTPServerHeader, IsEmptyForAnEmptyHeader) {
    const CHTTPServerHeader header("");
    EXPECT_TRUE(header.getComponentVersionMap().empty());
    EXPECT_FALSE(header.hasComponent(""));
    EXPECT_EQ(header.getComponentVersion(""), "");
}

TEST(HTTPServerHeader, MapsProductsToVersions) {
    EXPECT_EQ(versionsOf("Srv/2.4.57"), (Versions{{"Srv", "2.4.57"}}));
    EXPECT_EQ(versionsOf("a/1 b c/3"), (Versions{{"a", "1"}, {"b", ""}, {"c", "3"}}));
}

TEST(HTTPServerHeader, TellsWhetherAProductIsNamed) {
    const CHTTPServerHeader header("Srv/2.4 DAV");
    EXPECT_TRUE(header.hasComponent("Srv"));
    EXPECT_TRUE(header.hasComponent("DAV"));
    EXPECT_FALSE(header.hasComponent("Sr"));
    EXPECT_FALSE(header.hasComponent("Srv/2.4"));
    EXPECT_FALSE(header.hasComponent(""));
}

TEST(HTTPServerHeader, GivesNoVersionForAnAbsentProductAndOneWithout) {
    const CHTTPServerHeader header("Srv/2.4 DAV");
    EXPECT_EQ(header.getComponentVersion("Srv"), "2.4");
    EXPECT_EQ(header.getComponentVersion("DAV"), "");
    EXPECT_EQ(header.getComponentVersion("Other"), "");
}

TEST(HTTPServerHeader, MatchesNamesWithTheirCase) {
    const CHTTPServerHeader header("Python/3.6");
    EXPECT_EQ(header.getComponentVersion("Python"), "3.6");
    EXPECT_EQ(header.getComponentVersion("python"), "");
    EXPECT_FALSE(header.hasComponent("python"));
    EXPECT_EQ(versionsOf("a/1 A/2"), (Versions{{"A", "2"}, {"a", "1"}}));
}

TEST(HTTPServerHeader, SkipsTheEmptyTokensBetweenTwoBlanks) {
    EXPECT_EQ(versionsOf("a/1  b/2"), (Versions{{"a", "1"}, {"b", "2"}}));
    EXPECT_EQ(versionsOf("  a/1   "), (Versions{{"a", "1"}}));
    EXPECT_TRUE(versionsOf("   ").empty());
}

TEST(HTTPServerHeader, SplitsAtTheFirstSlash) {
    EXPECT_EQ(versionsOf("x/1/2"), (Versions{{"x", "1/2"}}));
    EXPECT_EQ(versionsOf("x/"), (Versions{{"x", ""}}));
    EXPECT_EQ(versionsOf("/1"), (Versions{{"", "1"}}));
    EXPECT_EQ(versionsOf("/"), (Versions{{"", ""}}));
}

TEST(HTTPServerHeader, TakesTheLastVersionOfAProductNamedTwice) {
    EXPECT_EQ(versionsOf("a/1 a/2"), (Versions{{"a", "2"}}));
    EXPECT_EQ(versionsOf("a/1 a"), (Versions{{"a", ""}}));
}

TEST(HTTPServerHeader, TakesTheWordsOfACommentForProducts) {
    EXPECT_EQ(versionsOf("Srv/2.4 (Unix)"), (Versions{{"(Unix)", ""}, {"Srv", "2.4"}}));
    EXPECT_EQ(versionsOf("Srv (Red Hat/9)"), (Versions{{"(Red", ""}, {"Hat", "9)"}, {"Srv", ""}}));
}

TEST(HTTPServerHeader, SeparatesAtBlanksOnly) {
    EXPECT_EQ(versionsOf("a/1\tb/2"), (Versions{{"a", "1\tb/2"}}));
    EXPECT_EQ(versionsOf("a/1,b/2"), (Versions{{"a", "1,b/2"}}));
    EXPECT_EQ(versionsOf(String(L"a/1\u00A0b")), (Versions{{"a", String(L"1\u00A0b")}}));
}

TEST(HTTPServerHeader, KeepsCharactersOfEveryKind) {
    EXPECT_EQ(versionsOf(String(L"Stra\u00DFe/\u20AC")),
              (Versions{{String(L"Stra\u00DFe"), String(L"\u20AC")}}));
    EXPECT_EQ(versionsOf(String("a\0b/1\0"
                                "2",
                                7)),
              (Versions{{String("a\0b", 3), String("1\0"
                                                   "2",
                                                   3)}}));
}

TEST(HTTPServerHeader, TakesAHeaderOf64KiB) {
    const String version(std::string(64 * 1024, '1'));
    EXPECT_EQ(versionsOf("a/" + version + " b"), (Versions{{"a", version}, {"b", ""}}));
    EXPECT_TRUE(versionsOf(String(std::string(64 * 1024, ' '))).empty());
}

TEST(HTTPServerHeader, CopiesItsProducts) {
    auto original = std::make_unique<CHTTPServerHeader>("a/1 b");
    const CHTTPServerHeader copy(*original);
    CHTTPServerHeader assigned("c/3");
    assigned = *original;
    original.reset();
    EXPECT_EQ(copy.getComponentVersionMap(), (Versions{{"a", "1"}, {"b", ""}}));
    EXPECT_EQ(assigned.getComponentVersionMap(), (Versions{{"a", "1"}, {"b", ""}}));
}

TEST(HTTPServerHeader, MovesItsProducts) {
    CHTTPServerHeader original("a/1 b");
    CHTTPServerHeader moved(std::move(original));
    EXPECT_EQ(moved.getComponentVersionMap(), (Versions{{"a", "1"}, {"b", ""}}));
    CHTTPServerHeader assigned("c/3");
    assigned = std::move(moved);
    EXPECT_EQ(assigned.getComponentVersionMap(), (Versions{{"a", "1"}, {"b", ""}}));
}

} // namespace
