#include "vantra/FTPListDirResult.h"

#include "Thrown.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <string_view>
#include <type_traits>
#include <utility>
#include <vector>

namespace vantra::test {

namespace {

using kel::P;
using kel::String;
using kel::TArray;
using kel::TBuffer;
using testing::ElementsAre;
using testing::IsEmpty;

static_assert(std::is_base_of_v<kel::CBase, CFTPListDirResult>);
static_assert(std::is_same_v<decltype(std::declval<const CFTPListDirResult&>().getEntries()),
                             const TArray<P<CFTPDirEntry>>&>);

TBuffer<unsigned char> bufferOf(std::string_view bytes) {
    return {reinterpret_cast<const unsigned char*>(bytes.data()), bytes.size()};
}

/// The names of the entries, in order.
std::vector<std::string> namesOf(const CFTPListDirResult& listing) {
    std::vector<std::string> names;
    for (const P<CFTPDirEntry>& entry : listing.getEntries()) names.push_back(entry->getName().toUTF8());
    return names;
}

std::vector<std::string> read(std::string_view bytes) { return namesOf(CFTPListDirResult(bufferOf(bytes))); }

Thrown thrownFor(std::string_view bytes) {
    return thrownBy([&] { const CFTPListDirResult listing(bufferOf(bytes)); });
}

TEST(FTPListDirResult, HoldsTheEntriesInTheirOrder) {
    const CFTPListDirResult listing(bufferOf("type=file;size=3; z\r\n"
                                             "type=dir;modify=20190401123000; a\r\n"
                                             "type=cdir; .\r\n"));
    ASSERT_EQ(listing.getEntries().size(), 3U);
    EXPECT_EQ(listing.getEntries()[0]->getName(), "z");
    EXPECT_EQ(listing.getEntries()[0]->getType(), kel::IFileInfoBase::File);
    EXPECT_EQ(listing.getEntries()[0]->getSize(), 3);
    EXPECT_EQ(listing.getEntries()[1]->getName(), "a");
    EXPECT_EQ(listing.getEntries()[1]->getType(), kel::IFileInfoBase::Directory);
    EXPECT_EQ(listing.getEntries()[1]->getModifiedTime().getMicroseconds(), 1554121800000000);
    EXPECT_EQ(listing.getEntries()[2]->getName(), ".");
    EXPECT_EQ(listing.getEntries()[2]->getType(), kel::IFileInfoBase::Unknown);
}

TEST(FTPListDirResult, IsEmptyForAnEmptyBuffer) { EXPECT_THAT(read(""), IsEmpty()); }

TEST(FTPListDirResult, IsEmptyForNothingButLineBreaks) {
    EXPECT_THAT(read("\r\n"), IsEmpty());
    EXPECT_THAT(read("\n\n\r\r\n\r"), IsEmpty());
}

TEST(FTPListDirResult, TakesEveryKindOfLineBreak) {
    EXPECT_THAT(read("a=; 1\r\na=; 2\na=; 3\ra=; 4\r\n\r\n\n\ra=; 5"), ElementsAre("1", "2", "3", "4", "5"));
    EXPECT_THAT(read("\r\na=; 1\n"), ElementsAre("1"));
}

TEST(FTPListDirResult, KeepsBlanksAtTheEndsOfALine) {
    EXPECT_THAT(read("a=;  x \r\n y \r\n"), ElementsAre(" x ", "y "));
}

TEST(FTPListDirResult, ReadsUTF8) {
    EXPECT_THAT(read("a=; Gr\xC3\xB6\xC3\x9F"
                     "e\r\na=; \xF0\x9F\x90\x98\r\n"),
                ElementsAre("Gr\xC3\xB6\xC3\x9F"
                            "e",
                            "\xF0\x9F\x90\x98"));
}

TEST(FTPListDirResult, KeepsANULInAName) {
    using namespace std::string_literals;
    EXPECT_THAT(read("a=; x\0y\r\na=; z"s), ElementsAre("x\0y"s, "z"));
}

TEST(FTPListDirResult, RejectsWhatIsNoUTF8BeforeAnythingElse) {
    EXPECT_EQ(thrownFor("nospace\r\na=; Gr\xF6\xDF"
                        "e\r\n"),
              plainError("Invalid UTF-8 text."));
}

TEST(FTPListDirResult, IsNotMadeWhenALineIsNoEntry) {
    EXPECT_EQ(thrownFor("a=; 1\r\nnospacehere\r\nworse\r\n"),
              plainError("Invalid FTP dir entry: 'nospacehere'"));
    EXPECT_EQ(thrownFor("type=file;size=x; 1\r\n"), plainError("Invalid integer: 'x'."));
    EXPECT_EQ(thrownFor("drwxr-xr-x 2 user group 6 Apr 1 12:30 pub\r\n"),
              plainError("Invalid FTP dir entry: 'drwxr-xr-x 2 user group 6 Apr 1 12:30 pub'"));
}

TEST(FTPListDirResult, CanBeCopiedAndMovedWithItsEntries) {
    const CFTPListDirResult listing(bufferOf("a=; 1\r\na=; 2\r\n"));
    CFTPListDirResult copy(listing);
    EXPECT_EQ(copy.getEntries(), listing.getEntries());
    CFTPListDirResult assigned(bufferOf(""));
    assigned = copy;
    EXPECT_EQ(assigned.getEntries(), listing.getEntries());
    const CFTPListDirResult moved(std::move(copy));
    EXPECT_EQ(moved.getEntries(), listing.getEntries());
    CFTPListDirResult moveAssigned(bufferOf(""));
    moveAssigned = std::move(assigned);
    EXPECT_EQ(moveAssigned.getEntries(), listing.getEntries());
}

} // namespace

} // namespace vantra::test
