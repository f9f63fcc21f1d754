#include "PeakMemory.h"
#include "Thrown.h"

#include "vantra/S3Client.h"

#include "s3/QuietXMLLog.h"

#include "support/TempDir.h"

#include <kel/Array.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <atomic>
#include <string>
#include <string_view>
#include <thread>
#include <vector>

#include <wx/log.h>

namespace vantra::test {

namespace {

using kel::String;
using testing::IsEmpty;

const Thrown invalidList = plainError("Error parsing Amazon S3 'list objects' result: invalid XML.");
const Thrown invalidError = plainError("Error parsing Amazon S3 error response: invalid XML.");
const Thrown invalidCopy = plainError("Error parsing Amazon S3 'copy object' result: invalid XML.");

template <class Result>
Thrown parseError(const std::string& xml) {
    return thrownBy([&] { Result result(xml.data(), static_cast<int>(xml.size())); });
}

void expectInvalidEverywhere(const std::string& xml) {
    EXPECT_EQ(parseError<CS3ListObjectsResult>(xml), invalidList);
    EXPECT_EQ(parseError<CS3CopyObjectResult>(xml), invalidCopy);
    EXPECT_EQ(parseError<CS3ErrorResponse>(xml), invalidError);
}

std::string nested(std::string_view tag, int depth) {
    std::string xml;
    for (int i = 0; i < depth; ++i) xml += "<" + std::string(tag) + ">";
    for (int i = 0; i < depth; ++i) xml += "</" + std::string(tag) + ">";
    return xml;
}

TEST(S3HostileAnswer, WithAnEntityBombIsRefusedWithoutTakingMemory) {
    std::string bomb =
        "<?xml version=\"1.0\"?>\n<!DOCTYPE lolz [<!ENTITY a0 \"" + std::string(1000, 'x') + "\">";
    for (int i = 1; i < 10; ++i) {
        bomb += "<!ENTITY a" + std::to_string(i) + " \"";
        for (int j = 0; j < 10; ++j) bomb += "&a" + std::to_string(i - 1) + ";";
        bomb += "\">";
    }
    bomb += "]>\n<Error lol=\"&a9;\"><Code>&a9;</Code></Error>";
    const long before = getPeakKiB();
    expectInvalidEverywhere(bomb);
    const long grown = getPeakKiB() - before;
    RecordProperty("peakGrowthKiB", static_cast<int>(grown));
    EXPECT_LT(grown, 4096);
}

TEST(S3HostileAnswer, CannotNameAFileToRead) {
    const testsupport::TempDir folder;
    const std::string secret = folder.writeFile("secret.txt", "top secret");
    expectInvalidEverywhere("<!DOCTYPE Error [<!ENTITY x SYSTEM \"file://" + secret +
                            "\">]><Error><Code>&x;</Code></Error>");
    expectInvalidEverywhere("<!DOCTYPE Error SYSTEM \"file://" + secret + "\"><Error><Code>c</Code></Error>");
    expectInvalidEverywhere("<?xml version=\"1.0\"?><!DOCTYPE a [<!ENTITY % p SYSTEM \"file://" + secret +
                            "\"> %p;]><Error/>");
    // An entity that nobody declared is an error of the document, too.
    expectInvalidEverywhere("<Error><Code>&x;</Code></Error>");
}

TEST(S3HostileAnswer, CannotHideADeclarationInAnotherEncoding) {
    std::string utf16 = "\xff\xfe";
    for (const char c :
         std::string_view("<!DOCTYPE Error [<!ENTITY x \"y\">]><Error><Code>&x;</Code></Error>")) {
        utf16 += c;
        utf16 += '\0';
    }
    expectInvalidEverywhere(utf16);
    expectInvalidEverywhere(std::string("<Error>\0</Error>", 16));
}

TEST(S3HostileAnswer, MayBeNestedAHundredDeepAndNoDeeper) {
    const auto listing = [](int depth) {
        return "<ListBucketResult>" + nested("a", depth - 1) + "</ListBucketResult>";
    };
    EXPECT_EQ(parseError<CS3ListObjectsResult>(listing(100)), nothingThrown);
    EXPECT_EQ(parseError<CS3ListObjectsResult>(listing(101)), invalidList);
    expectInvalidEverywhere(nested("Error", 1000000));
    // Not closed, so that the tree would be freed by the loading itself.
    std::string open;
    for (int i = 0; i < 1000000; ++i) open += "<a>";
    expectInvalidEverywhere(open);
}

TEST(S3HostileAnswer, CannotHideItsNesting) {
    const auto hidden = [](std::string_view tag) {
        std::string xml;
        for (int i = 0; i < 200000; ++i) xml += tag;
        return xml;
    };
    expectInvalidEverywhere(hidden("<a><!--</a>-->"));
    expectInvalidEverywhere(hidden("<a><![CDATA[</a>]]>"));
    expectInvalidEverywhere(hidden("<a><?p </a>?>"));
    expectInvalidEverywhere(hidden("<a b='/>'>"));
    expectInvalidEverywhere(hidden("<a b=\"'/>\">"));
}

TEST(S3HostileAnswer, MayNotHaveTextsInThousandsOfPieces) {
    const auto error = [](const std::string& text) {
        return parseError<CS3ErrorResponse>("<Error><Message>" + text + "</Message></Error>");
    };
    const auto repeat = [](const std::string& piece, int count) {
        std::string text;
        for (int i = 0; i < count; ++i) text += piece;
        return text;
    };
    for (const char* piece : {"\n", "\r", "&lt;", "&#33;"}) {
        EXPECT_EQ(error(repeat(piece, 2000)), nothingThrown);
        EXPECT_EQ(error(repeat(piece, 3000)), invalidError);
        EXPECT_EQ(error("<![CDATA[" + repeat("\n", 3000) + "]]>"), invalidError);
    }
    EXPECT_EQ(error(std::string(256 << 10, 'x')), nothingThrown);
    EXPECT_EQ(error(std::string(2 << 20, 'x')), invalidError);
    EXPECT_EQ(error(std::string(50 << 20, '\n')), invalidError);
    EXPECT_EQ(parseError<CS3ErrorResponse>("<Error/>" + std::string(50 << 20, '\n')), invalidError);
}

TEST(S3HostileAnswer, OfFiftyMiBListsItsObjects) {
    const std::string entry = "<Contents><Key>some/folder/with an object number 0000000</Key><LastModified>"
                              "2009-10-12T17:50:30.000Z</LastModified><ETag>&quot;fba9dede5f27731c9771645a398"
                              "63328&quot;</ETag><Size>434234</Size><StorageClass>STANDARD</StorageClass>"
                              "</Contents>\n";
    const std::size_t count = (50U << 20U) / entry.size() + 1;
    std::string xml = "<ListBucketResult>\n";
    for (std::size_t i = 0; i < count; ++i) xml += entry;
    xml += "</ListBucketResult>\n";
    const CS3ListObjectsResult result(xml.data(), static_cast<int>(xml.size()));
    EXPECT_EQ(result.getObjects().size(), count);
    EXPECT_EQ(result.getObjects()[count - 1]->getSize(), 434234);
}

TEST(S3HostileAnswer, MayHaveMarksInTheTextWithoutNesting) {
    std::string xml = "<ListBucketResult>";
    for (int i = 0; i < 200; ++i)
        xml += "<!-- <a> --><![CDATA[<a>]]><?p <a>?><b c='>'/><d e=\"/\" >&lt;a></d>";
    EXPECT_EQ(parseError<CS3ListObjectsResult>(xml + "</ListBucketResult>"), nothingThrown);
}

TEST(S3HostileAnswer, EndsAnywhere) {
    const std::string whole =
        "<?xml version=\"1.0\"?><!-- c --><ListBucketResult a='b'><Contents><Key>k</Key>"
        "<![CDATA[x]]></Contents></ListBucketResult>";
    EXPECT_EQ(parseError<CS3ListObjectsResult>(whole), nothingThrown);
    for (std::size_t length = 0; length < whole.size(); ++length)
        EXPECT_EQ(parseError<CS3ListObjectsResult>(whole.substr(0, length)), invalidList) << length;
}

/// Counts what wxWidgets logs.
class CountingLog : public wxLog {
public:
    std::atomic<int> count{0};

protected:
    void DoLogRecord(wxLogLevel, const wxString&, const wxLogRecordInfo&) override { ++count; }
};

class WxLog : public testing::Test {
protected:
    WxLog() : before_(wxLog::SetActiveTarget(&log_)) {}
    ~WxLog() override { wxLog::SetActiveTarget(before_); }

    CountingLog log_;

private:
    wxLog* before_;
};

using S3AnswerWxLog = WxLog;

TEST_F(S3AnswerWxLog, HearsNothingOfBadXML) {
    expectInvalidEverywhere("<Error>");
    EXPECT_EQ(log_.count, 0);
    wxLogError("heard");
    EXPECT_EQ(log_.count, 1);
}

TEST_F(S3AnswerWxLog, IsOnAgainAfterManyThreads) {
    std::vector<std::thread> threads;
    for (int i = 0; i < 4; ++i) {
        threads.emplace_back([] {
            for (int round = 0; round < 200; ++round) expectInvalidEverywhere("<Error>");
        });
    }
    for (std::thread& thread : threads) thread.join();
    EXPECT_EQ(log_.count, 0);
    wxLogError("heard");
    EXPECT_EQ(log_.count, 1);
}

TEST_F(S3AnswerWxLog, StaysOffWhereTheApplicationHasTurnedItOff) {
    const wxLogNull quiet;
    expectInvalidEverywhere("<Error>");
    wxLogError("not heard");
    EXPECT_EQ(log_.count, 0);
}

} // namespace

} // namespace vantra::test
