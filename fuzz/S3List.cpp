#include "fuzz/S3Answer.h"
#include "vantra/S3Results.h"

#include <string>

using kel::CError;
using kel::P;
using kel::String;
using vantra::CS3ListObjectsElement;
using vantra::CS3ListObjectsResult;

namespace {

bool isDocumented(const CError& error) {
    const String& message = error.getMessage();
    return message == "Error parsing Amazon S3 'list objects' result: invalid XML." ||
           message ==
               "Error parsing Amazon S3 'list objects' result: root element is not ListBucketResult." ||
           message == "Invalid Amazon S3 list objects element: 'Key' field not defined." ||
           (message.startsWith(L"Bad value for 'IsTruncated' S3 list objects result element: '") &&
            message.endsWith(L"'")) ||
           fuzz::isIntegerError(error);
}

/// The result as a document, and all of its texts behind one another.
String write(const CS3ListObjectsResult& result, String& texts) {
    const auto element = [&texts](const char* name, const String& text) {
        texts += text;
        return "<" + String(name) + ">" + fuzz::toXMLText(text) + "</" + String(name) + ">";
    };
    String xml = "<ListBucketResult>" + element("IsTruncated", result.isTruncated() ? "true" : "false") +
                 element("NextMarker", result.getDelimiteredNextMarker());
    for (const P<CS3ListObjectsElement>& object : result.getObjects())
        xml += "<Contents>" + element("Key", object->getKey()) +
               element("LastModified", object->getLastModified()) + element("ETag", object->getETag()) +
               element("Size", String::fromInt(object->getSize())) + "</Contents>";
    for (const String& prefix : result.getCommonPrefixes())
        xml += "<CommonPrefixes>" + element("Prefix", prefix) + "</CommonPrefixes>";
    return xml + "</ListBucketResult>";
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const auto result = fuzz::parseS3Answer<CS3ListObjectsResult>(data, size, isDocumented);
    if (!result) return 0;
    for (const P<CS3ListObjectsElement>& object : result->getObjects())
        fuzz::check(!object->getKey().isEmpty(), "every object has a key");
    String texts;
    const String document = write(*result, texts);
    if (!fuzz::isXMLText(texts)) return 0;
    const std::string xml = document.toUTF8();
    const CS3ListObjectsResult again(xml.data(), static_cast<int>(xml.size()));
    String ignored;
    fuzz::check(write(again, ignored) == document, "what was read can be written and read again");
    return 0;
}
