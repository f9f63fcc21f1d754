#include "Thrown.h"

#include "vantra/S3Client.h"

#include <kel/Buffer.h>

#include <gtest/gtest.h>

#include <string>

#include <wx/xml/xml.h>

namespace vantra::test {

namespace {

using kel::P;
using kel::TBuffer;

P<TBuffer<unsigned char>> toBuffer(const std::string& bytes) {
    return new TBuffer<unsigned char>(reinterpret_cast<const unsigned char*>(bytes.data()), bytes.size());
}

CS3CopyObjectResult parse(const std::string& xml) { return {xml.data(), static_cast<int>(xml.size())}; }

Thrown parseError(const std::string& xml) {
    return thrownBy([&] { parse(xml); });
}

TEST(S3CopyObjectResult, HasTimeAndETag) {
    const CS3CopyObjectResult result(
        toBuffer("<?xml version=\"1.0\"?>\n<CopyObjectResult xmlns=\"http://x/\"><Other>o</Other>\n"
                 "<LastModified>2009-10-28T22:32:00</LastModified><ETag>\"9b2cf535f27731c974343645a3985328\""
                 "</ETag></CopyObjectResult>")
            .get());
    EXPECT_FALSE(result.hadError());
    EXPECT_EQ(result.getErrorResponse(), nullptr);
    EXPECT_EQ(result.getLastModified(), "2009-10-28T22:32:00");
    EXPECT_EQ(result.getETag(), "\"9b2cf535f27731c974343645a3985328\"");
}

TEST(S3CopyObjectResult, MayBeEmpty) {
    const CS3CopyObjectResult result = parse("<CopyObjectResult/>");
    EXPECT_FALSE(result.hadError());
    EXPECT_EQ(result.getLastModified(), "");
    EXPECT_EQ(result.getETag(), "");
}

TEST(S3CopyObjectResult, KeepsAnErrorWithoutThrowingIt) {
    const CS3CopyObjectResult result =
        parse("<Error><Code>InternalError</Code><Message>We failed.</Message><ETag>e</ETag></Error>");
    EXPECT_TRUE(result.hadError());
    EXPECT_EQ(result.getErrorResponse()->getCode(), "InternalError");
    EXPECT_EQ(result.getErrorResponse()->getMessage(), "We failed.");
    EXPECT_EQ(result.getLastModified(), "");
    EXPECT_EQ(result.getETag(), "");
}

TEST(S3CopyObjectResult, IsNotMadeFromAnythingElse) {
    const Thrown invalid = plainError("Error parsing Amazon S3 'copy object' result: invalid XML.");
    EXPECT_EQ(parseError(""), invalid);
    EXPECT_EQ(parseError("<CopyObjectResult>"), invalid);
    EXPECT_EQ(thrownBy([] { CS3CopyObjectResult(static_cast<wxXmlNode*>(nullptr)); }),
              plainError("Error parsing Amazon S3 'copy object' result: no root element."));
    EXPECT_EQ(parseError("<error/>"),
              plainError("Error parsing Amazon S3 'copy object' result: unknown root element 'error'."));
    EXPECT_EQ(
        parseError("<gr\xc3\xbc\xc3\x9f/>"),
        plainError(
            "Error parsing Amazon S3 'copy object' result: unknown root element 'gr\xc3\xbc\xc3\x9f'."));
    EXPECT_EQ(thrownBy([] { CS3CopyObjectResult(static_cast<const TBuffer<unsigned char>*>(nullptr)); }),
              invalidArgError("CS3CopyObjectResult::CS3CopyObjectResult", "data must not be null"));
}

TEST(S3CopyObjectResult, IsCopiedAndMoved) {
    CS3CopyObjectResult first = parse("<Error><Code>c</Code></Error>");
    CS3CopyObjectResult copy(first);
    EXPECT_EQ(copy.getErrorResponse().get(), first.getErrorResponse().get());
    copy = parse("<CopyObjectResult><ETag>e</ETag></CopyObjectResult>");
    EXPECT_FALSE(copy.hadError());
    const CS3CopyObjectResult moved(std::move(first));
    EXPECT_TRUE(moved.hadError());
    copy = moved;
    EXPECT_TRUE(copy.hadError());
}

TEST(S3CopyObjectResult, IsCheckedForAnErrorByTheClient) {
    EXPECT_EQ(thrownBy([] { CS3Client::checkCopyObjectResult(toBuffer("<CopyObjectResult/>").get()); }),
              nothingThrown);
    const Thrown refused = thrownBy([] {
        CS3Client::checkCopyObjectResult(
            toBuffer("<Error><Code>InternalError</Code><Message>We failed.</Message></Error>").get());
    });
    const Thrown expected{"CS3Error",
                          "Amazon S3 error: We failed.(InternalError)",
                          "http",
                          0,
                          {{"s3-resource", ""}, {"s3-requestID", ""}, {"s3-code", "InternalError"}},
                          "InternalError"};
    EXPECT_EQ(refused, expected);
    EXPECT_EQ(thrownBy([] { CS3Client::checkCopyObjectResult(toBuffer("").get()); }),
              plainError("Error parsing Amazon S3 'copy object' result: invalid XML."));
}

} // namespace

} // namespace vantra::test
