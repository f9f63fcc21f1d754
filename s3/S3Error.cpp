#include "vantra/S3Error.h"

#include "s3/AnswerDocument.h"

#include <kel/Props.h>

namespace vantra {

using kel::CError;
using kel::CProps;
using kel::P;
using kel::String;

namespace {

constexpr const char* errorStart = "Error parsing Amazon S3 error response: ";

CProps makeParams(const CS3ErrorResponse& response, int httpStatus) {
    CProps params;
    params.add("s3-resource", response.getResource())
        .add("s3-requestID", response.getRequestID())
        .add("s3-code", response.getCode())
        .addCond(httpStatus > 0, "responseCode", String::fromInt(httpStatus));
    return params;
}

} // namespace

CS3ErrorResponse::CS3ErrorResponse(const String& code, const String& message, const String& resource,
                                   const String& requestID)
    : code_(code), message_(message), resource_(resource), requestID_(requestID) {}

CS3ErrorResponse::CS3ErrorResponse(const char* data, int size) {
    read(AnswerDocument(toAnswerBytes(data, size), errorStart).getRoot());
}

CS3ErrorResponse::CS3ErrorResponse(wxXmlNode* root) { read(root); }

CS3ErrorResponse::CS3ErrorResponse(const CS3ErrorResponse&) = default;
CS3ErrorResponse::CS3ErrorResponse(CS3ErrorResponse&&) noexcept = default;
CS3ErrorResponse& CS3ErrorResponse::operator=(const CS3ErrorResponse&) = default;
CS3ErrorResponse& CS3ErrorResponse::operator=(CS3ErrorResponse&&) noexcept = default;
CS3ErrorResponse::~CS3ErrorResponse() = default;

void CS3ErrorResponse::read(const wxXmlNode* root) {
    if (!root) throw CError(String(errorStart) + "no root element.");
    if (root->GetName() != wxS("Error"))
        throw CError("Error parsing Amazon S3 error result: root element is not 'Error'.");
    for (const wxXmlNode* field = getFirstElement(*root); field; field = getNextElement(*field)) {
        const wxString& name = field->GetName();
        if (name == wxS("Code")) {
            code_ = getElementText(*field);
        } else if (name == wxS("Message")) {
            message_ = getElementText(*field);
        } else if (name == wxS("Resource")) {
            resource_ = getElementText(*field);
        } else if (name == wxS("RequestId")) {
            requestID_ = getElementText(*field);
        }
    }
}

P<CS3ErrorResponse> CS3ErrorResponse::createObjectNotFoundResponse(const String& resource) {
    return new CS3ErrorResponse("NoSuchKey", "The resource you requested does not exist", resource, "");
}

CS3Error::CS3Error(const CS3ErrorResponse& response, int httpStatus)
    : CError(makeErrorText(response), "http", httpStatus, makeParams(response, httpStatus)),
      s3Code_(response.getCode()) {}

CS3Error::CS3Error(const CS3Error&) = default;
CS3Error& CS3Error::operator=(const CS3Error&) = default;
CS3Error::~CS3Error() = default;

String CS3Error::makeErrorText(const CS3ErrorResponse& response) {
    return "Amazon S3 error: " + response.getMessage() + "(" + response.getCode() + ")";
}

P<CS3Error> CS3Error::createObjectNotFoundError(const String& resource) {
    constexpr int notFound = 404;
    return new CS3Error(*CS3ErrorResponse::createObjectNotFoundResponse(resource), notFound);
}

P<CError> CS3Error::clone() const { return new CS3Error(*this); }

void CS3Error::throwClone() const { throw CS3Error(*this); }

} // namespace vantra
