#include "fuzz/S3Answer.h"
#include "vantra/S3Results.h"

#include <string>

using kel::CError;
using kel::String;
using vantra::CS3CopyObjectResult;

namespace {

bool isDocumented(const CError& error) {
    return error.getMessage() == "Error parsing Amazon S3 'copy object' result: invalid XML." ||
           (error.getMessage().startsWith(
                L"Error parsing Amazon S3 'copy object' result: unknown root element '") &&
            error.getMessage().endsWith(L"'."));
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const auto result = fuzz::parseS3Answer<CS3CopyObjectResult>(data, size, isDocumented);
    if (!result) return 0;
    if (result->hadError()) {
        fuzz::check(result->getErrorResponse() != nullptr, "an error has its response");
        fuzz::check(result->getLastModified().isEmpty() && result->getETag().isEmpty(),
                    "an error has no other fields");
        return 0;
    }
    fuzz::check(result->getErrorResponse() == nullptr, "a success has no error");
    if (!fuzz::isXMLText(result->getLastModified() + result->getETag())) return 0;
    const std::string xml =
        ("<CopyObjectResult><LastModified>" + fuzz::toXMLText(result->getLastModified()) +
         "</LastModified><ETag>" + fuzz::toXMLText(result->getETag()) + "</ETag></CopyObjectResult>")
            .toUTF8();
    const CS3CopyObjectResult again(xml.data(), static_cast<int>(xml.size()));
    fuzz::check(again.getLastModified() == result->getLastModified() && again.getETag() == result->getETag(),
                "what was read can be written and read again");
    return 0;
}
