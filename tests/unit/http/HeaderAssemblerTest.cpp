#include "vantra/HeaderAssembler.h"

#include <kel/Error.h>

#include <gtest/gtest.h>

#include <initializer_list>
#include <string>
#include <type_traits>
#include <typeinfo>
#include <utility>

namespace {

using kel::CError;
using kel::CInvalidArgError;
using kel::P;
using kel::String;
using kel::TMap;
using vantra::CHeaderAssembler;
using vantra::CServerInfo;

using HeaderMap = TMap<String, String>;

static_assert(std::is_base_of_v<kel::CBase, CHeaderAssembler>);
static_assert(std::is_same_v<decltype(std::declval<CHeaderAssembler&>().getHeaderMap()), HeaderMap&>);
static_assert(
    std::is_same_v<decltype(std::declval<const CHeaderAssembler&>().getHeaderMap()), const HeaderMap&>);

void handleLines(CHeaderAssembler& assembler, std::initializer_list<String> lines) {
    for (const String& line : lines) assembler.handleHeaderLine(line);
}

/// The map that the lines make.
HeaderMap mapOf(std::initializer_list<String> lines) {
    CHeaderAssembler assembler;
    handleLines(assembler, lines);
    return assembler.getHeaderMap();
}

void expectSplitError(CHeaderAssembler& assembler, const String& line, const String& message) {
    try {
        assembler.handleHeaderLine(line);
        ADD_FAILURE() << "took '" << line << "'";
    } catch (const CInvalidArgError& error) {
        EXPECT_EQ(error.getMessage(), message);
        EXPECT_EQ(error.getFunction(), "CNetHeaders::splitEntry");
        EXPECT_EQ(error.getCodeDomain(), "");
        EXPECT_EQ(error.getCode(), -1);
        EXPECT_TRUE(error.getParams().isEmpty());
    }
}

void expectWhiteSpaceError(CHeaderAssembler& assembler, const String& line) {
    try {
        assembler.handleHeaderLine(line);
        ADD_FAILURE() << "took '" << line << "'";
    } catch (const CError& error) {
        EXPECT_EQ(typeid(error), typeid(CError));
        EXPECT_EQ(error.getMessage(), "Error parsing HTTP header: first line starts with whitespace.");
        EXPECT_EQ(error.getCodeDomain(), "");
        EXPECT_EQ(error.getCode(), -1);
        EXPECT_TRUE(error.getParams().isEmpty());
    }
}

/// A record that says when it goes.
class MortalServerInfo : public CServerInfo {
public:
    explicit MortalServerInfo(int& deaths) : deaths_(deaths) {}
    ~MortalServerInfo() override { ++deaths_; }

private:
    int& deaths_;
};

TEST(HeaderAssembler, HasOneMapThatFollowsEachLine) {
    CHeaderAssembler assembler;
    assembler.handleHeaderLine("A: 1\r\n");
    const HeaderMap& map = std::as_const(assembler).getHeaderMap();
    EXPECT_EQ(map, (HeaderMap{{"a", "1"}}));
    assembler.handleHeaderLine(" more\r\n");
    assembler.handleHeaderLine("B: 2\r\n");
    EXPECT_EQ(map, (HeaderMap{{"a", "1 more"}, {"b", "2"}}));
    EXPECT_EQ(&assembler.getHeaderMap(), &map);
    assembler.reset();
    EXPECT_TRUE(map.empty());
    assembler.handleHeaderLine("C: 3\r\n");
    EXPECT_EQ(map, (HeaderMap{{"c", "3"}}));
}

TEST(HeaderAssembler, CopiesAndMovesLinesThatNobodyHasAskedForYet) {
    CHeaderAssembler assembler;
    assembler.handleHeaderLine("A: 1\r\n");
    CHeaderAssembler copy(assembler);
    copy.handleHeaderLine("A: 2\r\n");
    CHeaderAssembler moved(std::move(copy));
    moved.handleHeaderLine(" 3\r\n");
    EXPECT_EQ(moved.getHeaderMap(), (HeaderMap{{"a", "1,2 3"}}));
    EXPECT_EQ(assembler.getHeaderMap(), (HeaderMap{{"a", "1"}}));
}

TEST(HeaderAssembler, ForgetsLinesThatNobodyHasAskedForYet) {
    CHeaderAssembler assembler;
    assembler.handleHeaderLine("A: 1\r\n");
    assembler.reset();
    EXPECT_TRUE(assembler.getHeaderMap().empty());
}

TEST(HeaderAssembler, IsEmptyAtFirst) { EXPECT_TRUE(CHeaderAssembler().getHeaderMap().empty()); }

TEST(HeaderAssembler, StoresTrimmedValuesUnderLowerCasedNames) {
    EXPECT_EQ(mapOf({"Content-TYPE :  Text/Plain \r\n", "ETag:\"A\"\r\n", "Time: 12:30:00\r\n"}),
              (HeaderMap{{"content-type", "Text/Plain"}, {"etag", "\"A\""}, {"time", "12:30:00"}}));
}

TEST(HeaderAssembler, JoinsRepeatedHeadersWithAComma) {
    EXPECT_EQ(mapOf({"Set-Cookie: a=1\r\n", "Set-Cookie: b=2\r\n"}), (HeaderMap{{"set-cookie", "a=1,b=2"}}));
    EXPECT_EQ(mapOf({"A: 1\r\n", "B: 2\r\n", "a: 3\r\n"}), (HeaderMap{{"a", "1,3"}, {"b", "2"}}));
}

TEST(HeaderAssembler, JoinsContinuationLinesWithABlank) {
    EXPECT_EQ(mapOf({"X-Long: part one\r\n", " part two\r\n"}), (HeaderMap{{"x-long", "part one part two"}}));
    EXPECT_EQ(mapOf({"X-Long: part one", " part two\r\n"}), (HeaderMap{{"x-long", "part one part two"}}));
    EXPECT_EQ(mapOf({"X-Long: a\r\n", "\t  b  c \t\r\n", " d\r\n"}), (HeaderMap{{"x-long", "a b  c d"}}));
}

TEST(HeaderAssembler, ContinuesTheHeaderStoredLast) {
    EXPECT_EQ(mapOf({"A: 1\r\n", "B: 2\r\n", "A: 3\r\n", " more\r\n"}),
              (HeaderMap{{"a", "1,3 more"}, {"b", "2"}}));
}

TEST(HeaderAssembler, DoesNotSplitAContinuationLine) {
    EXPECT_EQ(mapOf({"A: 1\r\n", " B: 2\r\n"}), (HeaderMap{{"a", "1 B: 2"}}));
}

TEST(HeaderAssembler, AppendsABlankForAContinuationLineOfWhiteSpaceOnly) {
    EXPECT_EQ(mapOf({"A: 1\r\n", " \t \r\n"}), (HeaderMap{{"a", "1 "}}));
    EXPECT_EQ(mapOf({"A: 1\r\n", " \r\n", "\t\r\n", " x\r\n"}), (HeaderMap{{"a", "1   x"}}));
    EXPECT_EQ(mapOf({"A:\r\n", " x\r\n"}), (HeaderMap{{"a", " x"}}));
}

TEST(HeaderAssembler, TakesAnyOtherEndOfLineForAContinuationLine) {
    EXPECT_EQ(mapOf({"A: 1\r\n", "\n", "B: 2\r\n"}), (HeaderMap{{"a", "1 "}, {"b", "2"}}));
    EXPECT_EQ(mapOf({"A: 1\r\n", "\r", " \r\n", "\r\n\r\n", "B: 2\r\n"}),
              (HeaderMap{{"a", "1   "}, {"b", "2"}}));
}

TEST(HeaderAssembler, CreatesTheEntryThatAContinuationLineLacks) {
    CHeaderAssembler assembler;
    assembler.handleHeaderLine("A: 1\r\n");
    assembler.getHeaderMap().clear();
    assembler.handleHeaderLine(" more\r\n");
    EXPECT_EQ(assembler.getHeaderMap(), (HeaderMap{{"a", " more"}}));
}

TEST(HeaderAssembler, ReplacesAnEmptyValueInsteadOfJoiningIt) {
    CHeaderAssembler assembler;
    assembler.handleHeaderLine("Content-Length:\r\n");
    EXPECT_EQ(assembler.getHeaderMap(), (HeaderMap{{"content-length", ""}}));
    assembler.handleHeaderLine("Content-Length: 5\r\n");
    EXPECT_EQ(assembler.getHeaderMap(), (HeaderMap{{"content-length", "5"}}));
}

TEST(HeaderAssembler, JoinsAnEmptyValueToAStoredOne) {
    EXPECT_EQ(mapOf({"A: 1\r\n", "A:\r\n"}), (HeaderMap{{"a", "1,"}}));
    EXPECT_EQ(mapOf({"A: 1\r\n", "A:\r\n", "A: 2\r\n"}), (HeaderMap{{"a", "1,,2"}}));
}

TEST(HeaderAssembler, RejectsAFirstLineThatStartsWithWhiteSpace) {
    CHeaderAssembler assembler;
    for (const char* const line : {" x", " x\r\n", "\tx: y\r\n", " \r\n", "\n"})
        expectWhiteSpaceError(assembler, line);
    EXPECT_TRUE(assembler.getHeaderMap().empty());
}

TEST(HeaderAssembler, RejectsAContinuationLineAfterAReset) {
    CHeaderAssembler assembler;
    assembler.handleHeaderLine("A: 1\r\n");
    assembler.reset();
    expectWhiteSpaceError(assembler, " more\r\n");
    EXPECT_TRUE(assembler.getHeaderMap().empty());
}

TEST(HeaderAssembler, RejectsMalformedLines) {
    CHeaderAssembler assembler;
    expectSplitError(assembler, "no colon\r\n", "entry contains no ':'");
    expectSplitError(assembler, "", "entry contains no ':'");
    expectSplitError(assembler, ": value\r\n", "name is empty");
    EXPECT_TRUE(assembler.getHeaderMap().empty());
}

TEST(HeaderAssembler, KeepsWhatItHadBeforeABadLineAndGoesOn) {
    CHeaderAssembler assembler;
    assembler.handleHeaderLine("A: 1\r\n");
    expectSplitError(assembler, "no colon\r\n", "entry contains no ':'");
    EXPECT_EQ(assembler.getHeaderMap(), (HeaderMap{{"a", "1"}}));
    assembler.handleHeaderLine(" more\r\n");
    assembler.handleHeaderLine("B: 2\r\n");
    EXPECT_EQ(assembler.getHeaderMap(), (HeaderMap{{"a", "1 more"}, {"b", "2"}}));
}

TEST(HeaderAssembler, IgnoresLinesAfterTheBlankLineUntilItIsReset) {
    CHeaderAssembler assembler;
    handleLines(assembler, {"A: 1\r\n", "\r\n", "B: 2\r\n", " more\r\n", "no colon\r\n", "\r\n"});
    EXPECT_EQ(assembler.getHeaderMap(), (HeaderMap{{"a", "1"}}));
    assembler.reset();
    EXPECT_TRUE(assembler.getHeaderMap().empty());
    handleLines(assembler, {"C: 3\r\n", "\r\n"});
    EXPECT_EQ(assembler.getHeaderMap(), (HeaderMap{{"c", "3"}}));
}

TEST(HeaderAssembler, CompletesABlockWithoutHeaders) {
    CHeaderAssembler assembler;
    handleLines(assembler, {"\r\n", " x\r\n", "A: 1\r\n"});
    EXPECT_TRUE(assembler.getHeaderMap().empty());
}

TEST(HeaderAssembler, KeepsTextOutsideASCII) {
    EXPECT_EQ(mapOf({String(L"X-\u00C4Z\u20AC: \U0001F600\r\n"), String(L" \u00DF\r\n")}),
              (HeaderMap{{String(L"x-\u00C4z\u20AC"), String(L"\U0001F600 \u00DF")}}));
    EXPECT_EQ(mapOf({String(L"\u00A0A: 1\r\n")}), (HeaderMap{{String(L"\u00A0a"), "1"}}));
}

TEST(HeaderAssembler, KeepsNULCharacters) {
    EXPECT_EQ(mapOf({String("A\0B: c\0d\r\n", 10), String(" e\0f\r\n", 6)}),
              (HeaderMap{{String("a\0b", 3), String("c\0d e\0f", 7)}}));
}

TEST(HeaderAssembler, TakesNamesAndValuesOf64KiB) {
    const String name(std::string(64 * 1024, 'N'));
    const String value(std::string(64 * 1024, 'V'));
    EXPECT_EQ(mapOf({name + ": " + value + "\r\n", " " + value + "\r\n"}),
              (HeaderMap{{name.toLower(), value + " " + value}}));
}

TEST(HeaderAssembler, LowerCasesNamesOfEveryLength) {
    for (const std::size_t length : {1UL, 63UL, 64UL, 65UL, 128UL, 129UL}) {
        EXPECT_EQ(mapOf({String(std::string(length, 'N')) + ": v\r\n"}),
                  (HeaderMap{{String(std::string(length, 'n')), "v"}}));
    }
}

TEST(HeaderAssembler, TakesTenThousandHeaders) {
    CHeaderAssembler assembler;
    for (int i = 0; i < 10000; ++i) assembler.handleHeaderLine("X-" + String::fromInt(i) + ": v\r\n");
    EXPECT_EQ(assembler.getHeaderMap().size(), 10000U);
    EXPECT_EQ(assembler.getHeaderMap().lookup("x-9999"), "v");
}

TEST(HeaderAssembler, JoinsTenThousandRepeatedAndContinuedLines) {
    CHeaderAssembler assembler;
    String expected;
    for (int i = 0; i < 10000; ++i) {
        handleLines(assembler, {"A: v\r\n", " w\r\n"});
        expected += i == 0 ? "v w" : ",v w";
    }
    EXPECT_EQ(assembler.getHeaderMap(), (HeaderMap{{"a", expected}}));
}

TEST(HeaderAssembler, TellsTheServerRecordOnceTheBlockIsComplete) {
    const P<CServerInfo> info = new CServerInfo();
    CHeaderAssembler assembler;
    assembler.setServerInfoToUpdate(info);
    assembler.handleHeaderLine("Server: DAV/2 Python/3.6\r\n");
    EXPECT_EQ(info->getServerHeader(), "");
    assembler.handleHeaderLine("\r\n");
    EXPECT_EQ(info->getServerHeader(), "DAV/2 Python/3.6");
    EXPECT_TRUE(info->areGetRangesBroken());
}

TEST(HeaderAssembler, DoesNotTellTheServerRecordOfIgnoredLines) {
    const P<CServerInfo> info = new CServerInfo();
    CHeaderAssembler assembler;
    assembler.setServerInfoToUpdate(info);
    handleLines(assembler, {"A: 1\r\n", "\r\n"});
    assembler.getHeaderMap()["server"] = "Late/1";
    handleLines(assembler, {"Server: Later/1\r\n", "\r\n"});
    EXPECT_EQ(info->getServerHeader(), "");
}

TEST(HeaderAssembler, KeepsTheServerRecordOverAReset) {
    const P<CServerInfo> info = new CServerInfo();
    CHeaderAssembler assembler;
    assembler.setServerInfoToUpdate(info);
    handleLines(assembler, {"A: 1\r\n", "\r\n"});
    assembler.reset();
    handleLines(assembler, {"Server: Srv/1\r\n", "\r\n"});
    EXPECT_EQ(info->getServerHeader(), "Srv/1");
}

TEST(HeaderAssembler, NeedsNoServerRecord) {
    const P<CServerInfo> info = new CServerInfo();
    CHeaderAssembler assembler;
    assembler.setServerInfoToUpdate(nullptr);
    handleLines(assembler, {"Server: Srv/1\r\n", "\r\n"});
    assembler.reset();
    assembler.setServerInfoToUpdate(info);
    assembler.setServerInfoToUpdate(nullptr);
    handleLines(assembler, {"Server: Srv/1\r\n", "\r\n"});
    EXPECT_EQ(info->getServerHeader(), "");
}

TEST(HeaderAssembler, KeepsTheServerRecordAliveUntilItGetsAnother) {
    int deaths = 0;
    CHeaderAssembler assembler;
    auto* const first = new MortalServerInfo(deaths);
    assembler.setServerInfoToUpdate(first);
    assembler.setServerInfoToUpdate(first); // must not let go before it takes hold
    EXPECT_EQ(deaths, 0);
    assembler.setServerInfoToUpdate(new MortalServerInfo(deaths));
    EXPECT_EQ(deaths, 1);
    assembler.setServerInfoToUpdate(nullptr);
    EXPECT_EQ(deaths, 2);
}

TEST(HeaderAssembler, LetsTheServerRecordGoAtItsEnd) {
    int deaths = 0;
    {
        CHeaderAssembler assembler;
        assembler.setServerInfoToUpdate(new MortalServerInfo(deaths));
    }
    EXPECT_EQ(deaths, 1);
}

/// In the middle of a block, with a server record.
CHeaderAssembler makeHalfFilled(CServerInfo* info) {
    CHeaderAssembler assembler;
    assembler.setServerInfoToUpdate(info);
    assembler.handleHeaderLine("Server: Srv/1\r\n");
    return assembler;
}

/// Whether the assembler goes on where makeHalfFilled() left off.
void expectGoesOn(CHeaderAssembler& assembler, const CServerInfo& info) {
    handleLines(assembler, {" (more)\r\n", "A: 1\r\n", "\r\n", "B: 2\r\n"});
    EXPECT_EQ(assembler.getHeaderMap(), (HeaderMap{{"server", "Srv/1 (more)"}, {"a", "1"}}));
    EXPECT_EQ(info.getServerHeader(), "Srv/1 (more)");
}

TEST(HeaderAssembler, CopiesEverything) {
    const P<CServerInfo> info = new CServerInfo();
    const CHeaderAssembler original = makeHalfFilled(info);
    CHeaderAssembler copy(original);
    expectGoesOn(copy, *info);
    EXPECT_EQ(original.getHeaderMap(), (HeaderMap{{"server", "Srv/1"}}));
}

TEST(HeaderAssembler, CopiesEverythingByAssignment) {
    const P<CServerInfo> info = new CServerInfo();
    const CHeaderAssembler original = makeHalfFilled(info);
    CHeaderAssembler assigned;
    handleLines(assigned, {"Z: 9\r\n", "\r\n"});
    assigned = original;
    expectGoesOn(assigned, *info);
    EXPECT_EQ(original.getHeaderMap(), (HeaderMap{{"server", "Srv/1"}}));
}

TEST(HeaderAssembler, MovesEverything) {
    const P<CServerInfo> info = new CServerInfo();
    CHeaderAssembler original = makeHalfFilled(info);
    CHeaderAssembler moved(std::move(original));
    expectGoesOn(moved, *info);
}

TEST(HeaderAssembler, MovesEverythingByAssignment) {
    const P<CServerInfo> info = new CServerInfo();
    CHeaderAssembler original = makeHalfFilled(info);
    CHeaderAssembler assigned;
    handleLines(assigned, {"Z: 9\r\n", "\r\n"});
    assigned = std::move(original);
    expectGoesOn(assigned, *info);
}

TEST(HeaderAssembler, HasOneMapThatFollowsAssignment) {
    CHeaderAssembler assembler;
    const HeaderMap& map = assembler.getHeaderMap();
    const CHeaderAssembler original = makeHalfFilled(nullptr);
    assembler = original;
    EXPECT_EQ(map, (HeaderMap{{"server", "Srv/1"}}));
    handleLines(assembler, {" (more)\r\n", "A: 1\r\n"});
    EXPECT_EQ(map, (HeaderMap{{"server", "Srv/1 (more)"}, {"a", "1"}}));
    assembler = makeHalfFilled(nullptr);
    EXPECT_EQ(map, (HeaderMap{{"server", "Srv/1"}}));
    assembler.handleHeaderLine("B: 2\r\n");
    EXPECT_EQ(map, (HeaderMap{{"b", "2"}, {"server", "Srv/1"}}));
    EXPECT_EQ(&assembler.getHeaderMap(), &map);
}

TEST(HeaderAssembler, MayBeAssignedToItself) {
    CHeaderAssembler assembler = makeHalfFilled(nullptr);
    const CHeaderAssembler& same = assembler;
    assembler = same;
    assembler.handleHeaderLine(" (more)\r\n");
    EXPECT_EQ(assembler.getHeaderMap(), (HeaderMap{{"server", "Srv/1 (more)"}}));
}

TEST(HeaderAssembler, CopiesThatABlockIsComplete) {
    CHeaderAssembler original;
    handleLines(original, {"A: 1\r\n", "\r\n"});
    CHeaderAssembler copy(original);
    copy.handleHeaderLine("B: 2\r\n");
    EXPECT_EQ(copy.getHeaderMap(), (HeaderMap{{"a", "1"}}));
}

} // namespace
