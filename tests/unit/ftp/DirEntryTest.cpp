#include "vantra/FTPDirEntry.h"

#include "Thrown.h"

#include <kel/Number.h>
#include <kel/P.h>

#include <gtest/gtest.h>

#include <wx/tokenzr.h>

#include <random>
#include <type_traits>
#include <utility>

namespace vantra::test {

namespace {

using kel::CTime;
using kel::IFileInfoBase;
using kel::int64;
using kel::P;
using kel::String;

static_assert(std::is_base_of_v<kel::CBase, CFTPDirEntry>);
static_assert(IFileInfoBase::Unknown == 0 && IFileInfoBase::File == 1 && IFileInfoBase::Directory == 2);

/// 2019-04-01 12:30:00 UTC.
constexpr int64 aprilFirst = 1554121800000000;

/// All that an entry holds.
struct Values {
    int type = 0;
    String name;
    int64 size = 0;
    int64 modified = 0;

    friend bool operator==(const Values&, const Values&) = default;
    friend std::ostream& operator<<(std::ostream& stream, const Values& values) {
        return stream << values.type << " '" << values.name << "' " << values.size << ' ' << values.modified;
    }
};

Values valuesOf(const CFTPDirEntry& entry) {
    return {entry.getType(), entry.getName(), entry.getSize(), entry.getModifiedTime().getMicroseconds()};
}

Values read(const String& line) { return valuesOf(CFTPDirEntry(line)); }

Thrown thrownFor(const String& line) {
    return thrownBy([&] { const CFTPDirEntry entry(line); });
}

void expectInvalid(const String& line) {
    EXPECT_EQ(thrownFor(line), plainError("Invalid FTP dir entry: '" + line.toUTF8() + "'"));
}

TEST(FTPDirEntry, KnowsNothingAtFirst) {
    EXPECT_EQ(valuesOf(CFTPDirEntry()), (Values{0, "", 0, 0}));
    EXPECT_EQ(CFTPDirEntry().getModifiedTime(), CTime());
}

TEST(FTPDirEntry, HoldsWhatItIsGiven) {
    CFTPDirEntry entry;
    entry.setType(IFileInfoBase::Directory);
    entry.setName(" a b ");
    entry.setSize(INT64_MAX);
    entry.setModifiedTime(CTime::fromMicroseconds(-1));
    EXPECT_EQ(valuesOf(entry), (Values{2, " a b ", INT64_MAX, -1}));
}

TEST(FTPDirEntry, CanBeCopiedAndMoved) {
    const CFTPDirEntry entry("type=file;size=3;modify=20190401123000; x");
    const Values values{1, "x", 3, aprilFirst};
    CFTPDirEntry copy(entry);
    EXPECT_EQ(valuesOf(copy), values);
    CFTPDirEntry assigned;
    assigned = copy;
    EXPECT_EQ(valuesOf(assigned), values);
    const CFTPDirEntry moved(std::move(copy));
    EXPECT_EQ(valuesOf(moved), values);
    CFTPDirEntry moveAssigned;
    moveAssigned = std::move(assigned);
    EXPECT_EQ(valuesOf(moveAssigned), values);
}

TEST(FTPDirEntry, ReadsAFile) {
    EXPECT_EQ(read("type=file;size=1024;modify=20190401123000; report.txt"),
              (Values{1, "report.txt", 1024, aprilFirst}));
}

TEST(FTPDirEntry, ReadsADirectoryInAnyCaseOfLetters) {
    EXPECT_EQ(read("Type=DIR;Modify=20190401123000.250; My Folder"),
              (Values{2, "My Folder", 0, aprilFirst + 250000}));
    EXPECT_EQ(read("TYPE=File;SIZE=7; X"), (Values{1, "X", 7, 0}));
}

TEST(FTPDirEntry, LeavesOtherTypesUnknown) {
    EXPECT_EQ(read("type=cdir; /pub"), (Values{0, "/pub", 0, 0}));
    for (const char* type : {"pdir", "os.unix=slink:/x", "os.unix=symlink", "", "filer", "fil", "directory"})
        EXPECT_EQ(read(String("type=") + type + "; n"), (Values{0, "n", 0, 0})) << type;
}

TEST(FTPDirEntry, KeepsItsTypeWhenAnUnknownOneFollows) {
    EXPECT_EQ(read("type=dir;type=cdir; n"), (Values{2, "n", 0, 0}));
}

TEST(FTPDirEntry, TakesTheLastFactOfAName) {
    EXPECT_EQ(read("type=dir;size=1;TYPE=file;Size=2;modify=19700101000001;modify=19700101000002; n"),
              (Values{1, "n", 2, 2000000}));
}

TEST(FTPDirEntry, PassesOverOtherFacts) {
    EXPECT_EQ(read("perm=adfrw;unique=FE01U6;UNIX.mode=0644;media-type=text/plain;lang=;=x;size=5; n"),
              (Values{0, "n", 5, 0}));
}

TEST(FTPDirEntry, KeepsEverythingBehindTheFirstBlankAsItsName) {
    EXPECT_EQ(read("type=file;  leading").name, " leading");
    EXPECT_EQ(read("type=file; trailing  ").name, "trailing  ");
    EXPECT_EQ(read("type=file; a;b=C; d").name, "a;b=C; d");
    EXPECT_EQ(read("type=file; ").name, "");
    EXPECT_EQ(read(L"type=file; Stra\u00DFe \u20AC \t%41#?").name, String(L"Stra\u00DFe \u20AC \t%41#?"));
}

TEST(FTPDirEntry, NeedsNoFacts) { EXPECT_EQ(read(" just a name"), (Values{0, "just a name", 0, 0})); }

TEST(FTPDirEntry, NeedsNoSemicolonBehindTheLastFact) {
    EXPECT_EQ(read("type=file a"), (Values{1, "a", 0, 0}));
    EXPECT_EQ(read("type=file;size=2 a"), (Values{1, "a", 2, 0}));
}

TEST(FTPDirEntry, TakesAnyNumberOfSemicolonsBehindTheLastFact) {
    EXPECT_EQ(read("type=file;;; a"), (Values{1, "a", 0, 0}));
}

TEST(FTPDirEntry, RejectsAnEmptyFactElsewhere) {
    expectInvalid("type=file;;size=1; a");
    expectInvalid(";type=file; a");
    expectInvalid("; a");
    expectInvalid(";;; a");
}

TEST(FTPDirEntry, RejectsALineWithoutABlank) {
    expectInvalid("nospacehere");
    expectInvalid("type=file;size=1;");
    expectInvalid("");
    expectInvalid("type=file;\ttabs");
}

TEST(FTPDirEntry, RejectsAFactWithoutAnEqualsSign) {
    expectInvalid("file; a");
    expectInvalid("type=file;Size; a");
    expectInvalid("-rw-r--r-- 1 user group 5 Apr 1 12:30 a");
}

TEST(FTPDirEntry, QuotesTheWholeRejectedLine) { expectInvalid(L"Type; Stra\u00DFe \u20AC"); }

TEST(FTPDirEntry, ReadsSizesOf64Bits) {
    EXPECT_EQ(read("size=9223372036854775807; n").size, INT64_MAX);
    EXPECT_EQ(read("size=-5; n").size, -5);
    EXPECT_EQ(thrownFor("size=9223372036854775808; n"),
              plainError("Invalid integer: '9223372036854775808'."));
    EXPECT_EQ(thrownFor("size=; n"), plainError("Invalid integer: ''."));
    EXPECT_EQ(thrownFor("size=1K; n"), plainError("Invalid integer: '1k'."));
    EXPECT_EQ(thrownFor("size=1=2; n"), plainError("Invalid integer: '1=2'."));
}

TEST(FTPDirEntry, PassesOutTheErrorOfATimeWithTheFactInLowerCase) {
    EXPECT_EQ(thrownFor("modify=2019040112300; n"), plainError("Invalid FTP time value: '2019040112300'"));
    EXPECT_EQ(thrownFor("modify=20190401123000Z; n"),
              plainError("Invalid FTP time value: '20190401123000z'"));
}

/// The fact lists that the tokenizer of wxWidgets makes of a text in its default mode, and what comes of
/// them.
struct Tokens {
    explicit Tokens(const String& facts) {
        wxStringTokenizer tokenizer(facts.toWxString(), ";");
        while (tokenizer.HasMoreTokens()) {
            const wxString token = tokenizer.GetNextToken();
            if (!token.Contains("=")) areFacts = false;
            if (token.BeforeFirst('=') == "size") size = kel::parseInt64(String(token.AfterFirst('=')));
        }
    }

    bool areFacts = true;
    int64 size = 0;
};

TEST(FTPDirEntry, SplitsFactsAsTheTokenizerDoes) {
    std::mt19937 random(20190401);
    const std::string facts[] = {"", "size=1", "size=22", "x=", "x"};
    for (int round = 0; round < 20000; ++round) {
        std::string list;
        for (auto count = random() % 6; count > 0; --count) {
            list += facts[random() % std::size(facts)];
            if (count > 1 || random() % 2 == 0) list += ";";
        }
        const Tokens tokens{String(list)};
        const String line = String(list) + " name";
        if (tokens.areFacts) {
            EXPECT_EQ(read(line), (Values{0, "name", tokens.size, 0})) << line;
        } else {
            expectInvalid(line);
        }
    }
}

} // namespace

} // namespace vantra::test
