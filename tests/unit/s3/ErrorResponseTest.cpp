#include "Thrown.h"

#include "vantra/S3Error.h"

#include <gtest/gtest.h>

#include <string>

#include <wx/xml/xml.h>

namespace vantra::test {

namespace {

using kel::CError;
using kel::P;
using kel::String;

CS3ErrorResponse parse(const std::string& xml) { return {xml.data(), static_cast<int>(xml.size())}; }

Thrown parseError(const std::string& xml) {
    return thrownBy([&] { parse(xml); });
}

TEST(S3ErrorResponse, HasTheFieldsOfADocument) {
    const CS3ErrorResponse response =
        parse("<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<Error>\n  <Code>NoSuchKey</Code>\n"
              "  <Message>The resource you requested does not exist</Message>\n"
              "  <Resource>/mybucket/myfoto.jpg</Resource>\n  <RequestId>4442587FB7D0A2F9</RequestId>\n"
              "</Error>\n");
    EXPECT_EQ(response.getCode(), "NoSuchKey");
    EXPECT_EQ(response.getMessage(), "The resource you requested does not exist");
    EXPECT_EQ(response.getResource(), "/mybucket/myfoto.jpg");
    EXPECT_EQ(response.getRequestID(), "4442587FB7D0A2F9");
}

TEST(S3ErrorResponse, HasNothingWhereTheDocumentHasNothing) {
    const CS3ErrorResponse response = parse("<Error/>");
    EXPECT_EQ(response.getCode(), "");
    EXPECT_EQ(response.getMessage(), "");
    EXPECT_EQ(response.getResource(), "");
    EXPECT_EQ(response.getRequestID(), "");
}

TEST(S3ErrorResponse, IgnoresOtherElementsAndNamesOfOtherCase) {
    const CS3ErrorResponse response = parse("<Error xmlns=\"http://x/\"><HostId>h</HostId><code>lower</code>"
                                            "<!-- c --><Code>C</Code><Detail><Code>inner</Code></Detail>"
                                            "text</Error>");
    EXPECT_EQ(response.getCode(), "C");
}

TEST(S3ErrorResponse, KeepsTheLastOfFieldsOfOneName) {
    EXPECT_EQ(parse("<Error><Code>A</Code><Code>B</Code></Error>").getCode(), "B");
}

TEST(S3ErrorResponse, HasTheWholeTextOfAField) {
    const CS3ErrorResponse response =
        parse("<Error><Message>a &lt;b&gt; &amp; <![CDATA[<c>]]><!-- gone --> d</Message>"
              "<Resource>/gr\xc3\xbc\xc3\x9f/\xf0\x9f\x98\x80&#x1F600;</Resource></Error>");
    EXPECT_EQ(response.getMessage(), "a <b> & <c> d");
    EXPECT_EQ(response.getResource(), "/gr\xc3\xbc\xc3\x9f/\xf0\x9f\x98\x80\xf0\x9f\x98\x80");
}

TEST(S3ErrorResponse, MayBeginWithAByteOrderMark) {
    EXPECT_EQ(parse("\xef\xbb\xbf<?xml version=\"1.0\" encoding=\"utf-8\"?><Error><Code>C</Code></Error>")
                  .getCode(),
              "C");
}

TEST(S3ErrorResponse, IsReadInTheEncodingThatItNames) {
    EXPECT_EQ(parse("<?xml version='1.0' encoding='ISO-8859-1'?><Error><Message>gr\xfc\xdf</Message></Error>")
                  .getMessage(),
              "gr\xc3\xbc\xc3\x9f");
}

TEST(S3ErrorResponse, HasNoNamesOfANamespacePrefix) {
    EXPECT_EQ(parseError("<s3:Error xmlns:s3=\"http://x/\"/>"),
              plainError("Error parsing Amazon S3 error result: root element is not 'Error'."));
    EXPECT_EQ(parse("<Error xmlns:s=\"http://x/\"><s:Code>C</s:Code></Error>").getCode(), "");
}

TEST(S3ErrorResponse, IsMadeFromAnElement) {
    wxXmlNode root(wxXML_ELEMENT_NODE, "Error");
    auto* code = new wxXmlNode(&root, wxXML_ELEMENT_NODE, "Code");
    code->AddChild(new wxXmlNode(wxXML_TEXT_NODE, "", "SlowDown"));
    EXPECT_EQ(CS3ErrorResponse(&root).getCode(), "SlowDown");
}

TEST(S3ErrorResponse, IsNotMadeFromWhatIsNoXML) {
    const Thrown invalid = plainError("Error parsing Amazon S3 error response: invalid XML.");
    EXPECT_EQ(parseError(""), invalid);
    EXPECT_EQ(parseError("plain text"), invalid);
    EXPECT_EQ(parseError("<Error><Code>A</Code>"), invalid);
    EXPECT_EQ(parseError("<Error></Error><Error/>"), invalid);
    EXPECT_EQ(parseError("<Error>\xff\xfe</Error>"), invalid);
    EXPECT_EQ(thrownBy([] { CS3ErrorResponse("<Error/>", -1); }), invalid);
    EXPECT_EQ(thrownBy([] { CS3ErrorResponse(nullptr, 5); }), invalid);
}

TEST(S3ErrorResponse, IsNotMadeWithoutARoot) {
    EXPECT_EQ(thrownBy([] { CS3ErrorResponse(static_cast<wxXmlNode*>(nullptr)); }),
              plainError("Error parsing Amazon S3 error response: no root element."));
}

TEST(S3ErrorResponse, IsNotMadeFromAnotherRoot) {
    const Thrown other = plainError("Error parsing Amazon S3 error result: root element is not 'Error'.");
    EXPECT_EQ(parseError("<error><Code>A</Code></error>"), other);
    EXPECT_EQ(parseError("<html><body>403</body></html>"), other);
}

TEST(S3ErrorResponse, IsCopiedAndMoved) {
    CS3ErrorResponse first("c", "m", "r", "i");
    CS3ErrorResponse copy(first);
    EXPECT_EQ(copy.getRequestID(), "i");
    copy = CS3ErrorResponse("c2", "m2", "r2", "i2");
    EXPECT_EQ(copy.getResource(), "r2");
    const CS3ErrorResponse moved(std::move(first));
    EXPECT_EQ(moved.getMessage(), "m");
    copy = moved;
    EXPECT_EQ(copy.getCode(), "c");
}

TEST(S3Error, HasTextCodeAndParametersOfTheResponse) {
    const CS3Error error(CS3ErrorResponse("NoSuchKey", "Not found.", "/b/k", "id"), 404);
    const Thrown expected{
        "CS3Error",
        "Amazon S3 error: Not found.(NoSuchKey)",
        "http",
        404,
        {{"s3-resource", "/b/k"}, {"s3-requestID", "id"}, {"s3-code", "NoSuchKey"}, {"responseCode", "404"}},
        "NoSuchKey"};
    EXPECT_EQ(describe(error), expected);
    EXPECT_EQ(error.getCause(), nullptr);
    EXPECT_STREQ(error.what(), "Amazon S3 error: Not found.(NoSuchKey)");
}

TEST(S3Error, WithoutStatusHasNoResponseCode) {
    for (const int status : {0, -1}) {
        const Thrown error = describe(CS3Error(CS3ErrorResponse("C", "", "", ""), status));
        EXPECT_EQ(error.code, status);
        EXPECT_EQ(error.message, "Amazon S3 error: (C)");
        EXPECT_EQ(error.params, (std::map<std::string, std::string>{
                                    {"s3-resource", ""}, {"s3-requestID", ""}, {"s3-code", "C"}}));
    }
}

TEST(S3Error, IsClonedThrownAndCopiedWhole) {
    const CS3Error error(CS3ErrorResponse("SlowDown", "m", "r", "i"), 503);
    const Thrown expected = describe(error);
    const CError& base = error;
    EXPECT_EQ(describe(*base.clone()), expected);
    EXPECT_EQ(thrownBy([&] { base.throwClone(); }), expected);
    CS3Error assigned(CS3ErrorResponse("x", "x", "x", "x"), 1);
    assigned = error;
    EXPECT_EQ(describe(assigned), expected);
}

TEST(S3Error, OfAMissingObjectIsNoSuchKey) {
    const P<CS3ErrorResponse> response = CS3ErrorResponse::createObjectNotFoundResponse("/b/gone");
    EXPECT_EQ(response->getCode(), "NoSuchKey");
    EXPECT_EQ(response->getMessage(), "The resource you requested does not exist");
    EXPECT_EQ(response->getResource(), "/b/gone");
    EXPECT_EQ(response->getRequestID(), "");
    const Thrown expected{
        "CS3Error",
        "Amazon S3 error: The resource you requested does not exist(NoSuchKey)",
        "http",
        404,
        {{"s3-resource", "/b/gone"}, {"s3-requestID", ""}, {"s3-code", "NoSuchKey"}, {"responseCode", "404"}},
        "NoSuchKey"};
    EXPECT_EQ(describe(*CS3Error::createObjectNotFoundError("/b/gone")), expected);
}

} // namespace

} // namespace vantra::test
