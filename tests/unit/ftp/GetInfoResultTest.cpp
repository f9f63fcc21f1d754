#include "vantra/FTPGetInfoResult.h"

#include "Thrown.h"

#include <gtest/gtest.h>

#include <string>
#include <type_traits>
#include <utility>
#include <vector>

namespace vantra::test {

namespace {

using kel::P;
using kel::PC;
using kel::String;

static_assert(std::is_base_of_v<kel::CBase, CFTPGetInfoResult>);
static_assert(std::is_same_v<decltype(std::declval<const CFTPGetInfoResult&>().getInfo()), PC<CFTPDirEntry>>);

P<CNetStringList> listOf(const std::vector<std::string>& lines) {
    P<CNetStringList> list = new CNetStringList();
    for (const std::string& line : lines) list->addUTF8(line);
    return list;
}

/// The name of the entry found.
String read(const std::vector<std::string>& lines) {
    return CFTPGetInfoResult(*listOf(lines)).getInfo()->getName();
}

Thrown thrownFor(const std::vector<std::string>& lines) {
    return thrownBy([&] { const CFTPGetInfoResult result(*listOf(lines)); });
}

Thrown noInfoLine(const std::string& response) {
    Thrown thrown = plainError("Invalid response to FTP MLST request (no info line found).");
    thrown.params["response"] = response;
    return thrown;
}

TEST(FTPGetInfoResult, HoldsTheEntryOfTheReply) {
    const CFTPGetInfoResult result(
        *listOf({"250-Listing x\r\n", " type=file;size=3; x\r\n", "250 End.\r\n"}));
    EXPECT_EQ(result.getInfo()->getName(), "x");
    EXPECT_EQ(result.getInfo()->getType(), kel::IFileInfoBase::File);
    EXPECT_EQ(result.getInfo()->getSize(), 3);
}

TEST(FTPGetInfoResult, FindsTheReplyAmongOthers) {
    EXPECT_EQ(read({"220-Welcome\r\n", " type=file; no\r\n", "220 Ready\r\n", "331 Password\r\n",
                    "230 In\r\n", "257 \"/\" is it\r\n", "250-Start of list for x\r\n", " type=file; /x\r\n",
                    "250 End\r\n", "221 Bye\r\n"}),
              "/x");
}

TEST(FTPGetInfoResult, TakesTheLastOfSeveralReplies) {
    EXPECT_EQ(
        read({"250-\r\n", " a=; first\r\n", "250 End\r\n", "250-\r\n", " a=; second\r\n", "250 End\r\n"}),
        "second");
}

TEST(FTPGetInfoResult, LooksForTheNextReplyOnlyBehindAnInfoLine) {
    // The line behind "250-" is the info line whatever it begins with.
    EXPECT_EQ(read({"250-start\r\n", "250-a=; x\r\n", " b=; y\r\n", "250 End\r\n"}), "x");
    EXPECT_EQ(read({"250-\r\n", "250-a=; x\r\n", "250-\r\n", " a=; z\r\n"}), "z");
}

TEST(FTPGetInfoResult, TakesOnlyTheWhiteSpaceBeforeTheFactsOff) {
    EXPECT_EQ(read({"250-\r\n", " \t  a=;  x  \r\n"}), " x  ");
    EXPECT_EQ(read({"250-\r\n", "a=; x\n"}), "x\n");
    EXPECT_EQ(read({"250-\r\n", "a=; x\r"}), "x\r");
    EXPECT_EQ(read({"250-\r\n", "a=; x"}), "x");
    EXPECT_EQ(read({"250-", "a=; x\r\n\r\n"}), "x\r\n");
}

TEST(FTPGetInfoResult, RejectsAnInfoLineThatIsNone) {
    EXPECT_EQ(thrownFor({"250-\r\n", " nospacehere\r\n", "250-\r\n", " a=; x\r\n"}),
              plainError("Invalid FTP dir entry: 'nospacehere'"));
    // The blank before a name without facts counts as white space at the start.
    EXPECT_EQ(thrownFor({"250-\r\n", " name\r\n"}), plainError("Invalid FTP dir entry: 'name'"));
    EXPECT_EQ(thrownFor({"250-\r\n", "\r\n"}), plainError("Invalid FTP dir entry: ''"));
    EXPECT_EQ(thrownFor({"250-\r\n", "250 End\r\n"}), plainError("Invalid FTP dir entry: '250 End'"));
}

TEST(FTPGetInfoResult, RejectsLinesWithoutAnInfoLine) {
    EXPECT_EQ(thrownFor({}), noInfoLine(""));
    EXPECT_EQ(thrownFor({"250 type=file; x\r\n"}), noInfoLine("250 type=file; x\r\n"));
    EXPECT_EQ(thrownFor({" 250-\r\n", " a=; x\r\n"}), noInfoLine(" 250-\r\n a=; x\r\n"));
    EXPECT_EQ(thrownFor({"220 hi\r\n", "250-Listing Gr\xC3\xB6\xC3\x9F"
                                       "e\r\n"}),
              noInfoLine("220 hi\r\n250-Listing Gr\xC3\xB6\xC3\x9F"
                         "e\r\n"));
}

TEST(FTPGetInfoResult, CanBeCopiedAndMovedWithItsEntry) {
    const CFTPGetInfoResult result(*listOf({"250-\r\n", " a=; x\r\n"}));
    CFTPGetInfoResult copy(result);
    EXPECT_EQ(copy.getInfo(), result.getInfo());
    CFTPGetInfoResult assigned(*listOf({"250-\r\n", " a=; other\r\n"}));
    assigned = copy;
    EXPECT_EQ(assigned.getInfo(), result.getInfo());
    const CFTPGetInfoResult moved(std::move(copy));
    EXPECT_EQ(moved.getInfo(), result.getInfo());
    CFTPGetInfoResult moveAssigned(*listOf({"250-\r\n", " a=; other\r\n"}));
    moveAssigned = std::move(assigned);
    EXPECT_EQ(moveAssigned.getInfo(), result.getInfo());
}

} // namespace

} // namespace vantra::test
