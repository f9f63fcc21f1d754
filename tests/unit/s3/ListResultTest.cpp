#include "Thrown.h"

#include "vantra/S3Results.h"

#include <kel/Buffer.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include <wx/xml/xml.h>

namespace vantra::test {

namespace {

using kel::P;
using kel::String;
using kel::TBuffer;
using testing::ElementsAre;
using testing::IsEmpty;

CS3ListObjectsResult parse(const std::string& content) {
    const std::string xml = "<ListBucketResult>" + content + "</ListBucketResult>";
    return {xml.data(), static_cast<int>(xml.size())};
}

Thrown parseError(const std::string& xml) {
    return thrownBy([&] { CS3ListObjectsResult(xml.data(), static_cast<int>(xml.size())); });
}

std::vector<std::string> getKeys(const CS3ListObjectsResult& result) {
    std::vector<std::string> keys;
    for (const P<CS3ListObjectsElement>& object : result.getObjects())
        keys.push_back(object->getKey().toUTF8());
    return keys;
}

TEST(S3ListObjectsResult, HasWhatTheServiceLists) {
    const std::string xml = R"(<?xml version="1.0" encoding="UTF-8"?>
<ListBucketResult xmlns="http://s3.amazonaws.com/doc/2006-03-01/">
  <Name>quotes</Name><Prefix>N</Prefix><Marker>Ned</Marker><MaxKeys>40</MaxKeys><Delimiter>/</Delimiter>
  <IsTruncated>true</IsTruncated>
  <NextMarker>Next</NextMarker>
  <Contents>
    <Key>Nelson</Key><LastModified>2006-01-01T12:00:00.000Z</LastModified>
    <ETag>&quot;828ef3fdfa96f00ad9f27c383fc9ac7f&quot;</ETag><Size>5</Size>
    <StorageClass>STANDARD</StorageClass><Owner><ID>bcaf161ca5fb16fd081034f</ID><Key>no</Key></Owner>
  </Contents>
  <Contents><Key>Neo</Key><LastModified>2006-01-02T12:00:00.000Z</LastModified><ETag>x</ETag>
    <Size>9223372036854775807</Size></Contents>
  <CommonPrefixes><Prefix>Na/</Prefix><Other>x</Other><Prefix>Nb/</Prefix></CommonPrefixes>
  <CommonPrefixes><Prefix>Nc/</Prefix></CommonPrefixes>
</ListBucketResult>)";
    const P<TBuffer<unsigned char>> buffer =
        new TBuffer<unsigned char>(reinterpret_cast<const unsigned char*>(xml.data()), xml.size());
    const CS3ListObjectsResult result(buffer.get());
    EXPECT_TRUE(result.isTruncated());
    EXPECT_EQ(result.getDelimiteredNextMarker(), "Next");
    ASSERT_EQ(result.getObjects().size(), 2U);
    const CS3ListObjectsElement& first = *result.getObjects()[0];
    EXPECT_EQ(first.getKey(), "Nelson");
    EXPECT_EQ(first.getLastModified(), "2006-01-01T12:00:00.000Z");
    EXPECT_EQ(first.getETag(), "\"828ef3fdfa96f00ad9f27c383fc9ac7f\"");
    EXPECT_EQ(first.getSize(), 5);
    const CS3ListObjectsElement& second = *result.getObjects()[1];
    EXPECT_EQ(second.getKey(), "Neo");
    EXPECT_EQ(second.getETag(), "x");
    EXPECT_EQ(second.getSize(), INT64_MAX);
    EXPECT_EQ(result.getCommonPrefixes(), (kel::TArray<String>{"Na/", "Nb/", "Nc/"}));
}

TEST(S3ListObjectsResult, MayBeEmpty) {
    const CS3ListObjectsResult result = parse("");
    EXPECT_FALSE(result.isTruncated());
    EXPECT_EQ(result.getDelimiteredNextMarker(), "");
    EXPECT_TRUE(result.getObjects().empty());
    EXPECT_TRUE(result.getCommonPrefixes().empty());
}

TEST(S3ListObjectsResult, ReadsTheTruncatedFlagInAnyCase) {
    for (const char* text : {"true", "True", "TRUE"})
        EXPECT_TRUE(parse("<IsTruncated>" + std::string(text) + "</IsTruncated>").isTruncated()) << text;
    for (const char* text : {"false", "False", "FALSE"})
        EXPECT_FALSE(parse("<IsTruncated>" + std::string(text) + "</IsTruncated>").isTruncated()) << text;
}

TEST(S3ListObjectsResult, RefusesAnotherTruncatedFlag) {
    const auto error = [](const std::string& text) {
        return parseError("<ListBucketResult><IsTruncated>" + text + "</IsTruncated></ListBucketResult>");
    };
    EXPECT_EQ(error("1"), plainError("Bad value for 'IsTruncated' S3 list objects result element: '1'"));
    EXPECT_EQ(error(""), plainError("Bad value for 'IsTruncated' S3 list objects result element: ''"));
    EXPECT_EQ(error("YES"), plainError("Bad value for 'IsTruncated' S3 list objects result element: 'yes'"));
    EXPECT_EQ(error(" true"),
              plainError("Bad value for 'IsTruncated' S3 list objects result element: ' true'"));
}

TEST(S3ListObjectsResult, KeepsTheLastOfFieldsOfOneName) {
    const CS3ListObjectsResult result =
        parse("<IsTruncated>true</IsTruncated><IsTruncated>false</IsTruncated><NextMarker>a</NextMarker>"
              "<NextMarker>b</NextMarker><Contents><Key>a</Key><Key>b</Key></Contents>");
    EXPECT_FALSE(result.isTruncated());
    EXPECT_EQ(result.getDelimiteredNextMarker(), "b");
    EXPECT_THAT(getKeys(result), ElementsAre("b"));
}

TEST(S3ListObjectsResult, HasKeysOfAnyCharacters) {
    const CS3ListObjectsResult result =
        parse("<Contents><Key> </Key></Contents><Contents><Key>&#10; lead</Key></Contents>"
              "<Contents><Key>a/b c+d%20?e&amp;f&lt;g&gt;</Key></Contents>"
              "<Contents><Key>\xf0\x9f\x98\x80\xc3\xa9&#x1F600;</Key></Contents>"
              "<Contents><Key>a<![CDATA[<b>]]>c<!-- x -->d</Key></Contents>");
    EXPECT_THAT(getKeys(result), ElementsAre(" ", "\n lead", "a/b c+d%20?e&f<g>",
                                             "\xf0\x9f\x98\x80\xc3\xa9\xf0\x9f\x98\x80", "a<b>cd"));
}

TEST(S3ListObjectsResult, HasObjectsWithTheirKeysAlone) {
    const CS3ListObjectsResult result = parse("<Contents><Key>k</Key></Contents>");
    const CS3ListObjectsElement& object = *result.getObjects()[0];
    EXPECT_EQ(object.getLastModified(), "");
    EXPECT_EQ(object.getETag(), "");
    EXPECT_EQ(object.getSize(), 0);
}

TEST(S3ListObjectsResult, RefusesAnObjectWithoutAKey) {
    const Thrown noKey = plainError("Invalid Amazon S3 list objects element: 'Key' field not defined.");
    const auto error = [](const std::string& object) {
        return parseError("<ListBucketResult><Contents><Key>good</Key></Contents>" + object +
                          "</ListBucketResult>");
    };
    EXPECT_EQ(error("<Contents/>"), noKey);
    EXPECT_EQ(error("<Contents><Size>5</Size></Contents>"), noKey);
    EXPECT_EQ(error("<Contents><Key></Key><Size>5</Size></Contents>"), noKey);
    EXPECT_EQ(error("<Contents><key>k</key></Contents>"), noKey);
    EXPECT_EQ(error("<Contents><Key>k</Key><Key/></Contents>"), noKey);
    EXPECT_EQ(thrownBy([] { CS3ListObjectsElement element(nullptr); }), noKey);
}

TEST(S3ListObjectsResult, RefusesASizeThatIsNoNumber) {
    for (const char* size : {"", "x", "1.5", " 5", "9223372036854775808"}) {
        EXPECT_EQ(parseError("<ListBucketResult><Contents><Key>k</Key><Size>" + std::string(size) +
                             "</Size></Contents></ListBucketResult>"),
                  plainError("Invalid integer: '" + std::string(size) + "'."));
    }
}

TEST(S3ListObjectsResult, IsNotMadeFromWhatIsNoXML) {
    const Thrown invalid = plainError("Error parsing Amazon S3 'list objects' result: invalid XML.");
    EXPECT_EQ(parseError(""), invalid);
    EXPECT_EQ(parseError("no xml"), invalid);
    EXPECT_EQ(parseError("<ListBucketResult><Contents><Key>k</Key></Contents>"), invalid);
    EXPECT_EQ(thrownBy([] { CS3ListObjectsResult("<ListBucketResult/>", -3); }), invalid);
    const P<TBuffer<unsigned char>> empty = new TBuffer<unsigned char>();
    EXPECT_EQ(thrownBy([&] { CS3ListObjectsResult result(empty.get()); }), invalid);
}

TEST(S3ListObjectsResult, IsNotMadeWithoutARoot) {
    EXPECT_EQ(thrownBy([] { CS3ListObjectsResult(static_cast<wxXmlNode*>(nullptr)); }),
              plainError("Error parsing Amazon S3 'list objects' result: no root element."));
}

TEST(S3ListObjectsResult, IsNotMadeFromAnotherRoot) {
    const Thrown other =
        plainError("Error parsing Amazon S3 'list objects' result: root element is not ListBucketResult.");
    EXPECT_EQ(parseError("<listBucketResult/>"), other);
    EXPECT_EQ(parseError("<Error><Code>c</Code></Error>"), other);
}

TEST(S3ListObjectsResult, IsNotMadeWithoutABuffer) {
    EXPECT_EQ(thrownBy([] { CS3ListObjectsResult(static_cast<const TBuffer<unsigned char>*>(nullptr)); }),
              invalidArgError("CS3ListObjectsResult::CS3ListObjectsResult", "data must not be null"));
}

TEST(S3ListObjectsResult, IsCopiedAndMoved) {
    CS3ListObjectsResult first = parse("<IsTruncated>true</IsTruncated><Contents><Key>k</Key></Contents>");
    CS3ListObjectsResult copy(first);
    EXPECT_EQ(copy.getObjects()[0].get(), first.getObjects()[0].get());
    copy = parse("");
    EXPECT_FALSE(copy.isTruncated());
    const CS3ListObjectsResult moved(std::move(first));
    EXPECT_THAT(getKeys(moved), ElementsAre("k"));
    copy = moved;
    EXPECT_TRUE(copy.isTruncated());
    const CS3ListObjectsElement element(*copy.getObjects()[0]);
    EXPECT_EQ(element.getKey(), "k");
}

TEST(S3ListObjectsResult, OfAThousandEntriesHasThemInTheirOrder) {
    std::string content;
    std::vector<std::string> keys;
    for (int i = 0; i < 1000; ++i) {
        keys.push_back("folder/object-" + std::to_string(i));
        content +=
            "<Contents><Key>" + keys.back() + "</Key><Size>" + std::to_string(i) + "</Size></Contents>";
    }
    const CS3ListObjectsResult result = parse(content);
    EXPECT_EQ(getKeys(result), keys);
    EXPECT_EQ(result.getObjects()[999]->getSize(), 999);
}

} // namespace

} // namespace vantra::test
