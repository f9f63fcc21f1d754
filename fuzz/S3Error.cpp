#include "vantra/S3Error.h"

#include "fuzz/S3Answer.h"
#include "vantra/S3Client.h"

#include <string>

using kel::CError;
using kel::String;
using vantra::CS3Error;
using vantra::CS3ErrorResponse;

namespace {

bool isDocumented(const CError& error) {
    return error.getMessage() == "Error parsing Amazon S3 error response: invalid XML." ||
           error.getMessage() == "Error parsing Amazon S3 error result: root element is not 'Error'.";
}

bool areSame(const CS3ErrorResponse& left, const CS3ErrorResponse& right) {
    return left.getCode() == right.getCode() && left.getMessage() == right.getMessage() &&
           left.getResource() == right.getResource() && left.getRequestID() == right.getRequestID();
}

void checkReadAgain(const CS3ErrorResponse& response) {
    const String all =
        response.getCode() + response.getMessage() + response.getResource() + response.getRequestID();
    if (!fuzz::isXMLText(all)) return;
    const std::string xml = ("<Error><Code>" + fuzz::toXMLText(response.getCode()) + "</Code><Message>" +
                             fuzz::toXMLText(response.getMessage()) + "</Message><Resource>" +
                             fuzz::toXMLText(response.getResource()) + "</Resource><RequestId>" +
                             fuzz::toXMLText(response.getRequestID()) + "</RequestId></Error>")
                                .toUTF8();
    const CS3ErrorResponse again(xml.data(), static_cast<int>(xml.size()));
    fuzz::check(areSame(response, again), "what was read can be written and read again");
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const auto response = fuzz::parseS3Answer<CS3ErrorResponse>(data, size, isDocumented);
    if (!response) return 0;
    const CS3Error error(*response, 503);
    fuzz::check(error.getS3Code() == response->getCode(), "the error has the response's code");
    fuzz::check(error.getMessage() ==
                    "Amazon S3 error: " + response->getMessage() + "(" + response->getCode() + ")",
                "the error has the response's text");
    // What may pass is decided by the code alone once there is one.
    fuzz::check(vantra::CS3Client::shouldSlowDown(error) ==
                    (response->getCode().isEmpty() || response->getCode() == "SlowDown"),
                "the code decides whether to slow down");
    checkReadAgain(*response);
    return 0;
}
