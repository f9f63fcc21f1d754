/// @file vantra/S3Error.h
/// What Amazon S3 says when it refuses a request.
///
///     try {
///         client->getObject(request, "bucket", "key", 0, -1);
///     } catch (const CS3Error& error) {
///         if (error.getS3Code() == "NoSuchKey") ...
///     }
#pragma once

#include "vantra/Export.h"

#include <kel/Base.h>
#include <kel/Error.h>
#include <kel/P.h>
#include <kel/String.h>

class wxXmlNode;

namespace vantra {

/// The error document of the service. Members that the document does not name are empty.
///
/// Thread safety: not changed after it was made; any thread may read it.
class VANTRA_API CS3ErrorResponse : public kel::CBase {
public:
    /// Stores the texts as they are.
    CS3ErrorResponse(const kel::String& code, const kel::String& message, const kel::String& resource,
                     const kel::String& requestID);
    /// Reads the XML document in `size` bytes at `data`. A document type declaration, elements nested more
    /// than 100 deep, and a text with more than 2048 line ends and references, or longer than some 1 MiB,
    /// make it invalid.
    /// @throws kel::CError "Error parsing Amazon S3 error response: invalid XML.", the same with "no root
    /// element.", or as the form for a node.
    CS3ErrorResponse(const char* data, int size);
    /// Reads an element, which stays the caller's; null counts as a missing root element. Of a member that
    /// occurs twice the last one counts.
    /// @throws kel::CError "Error parsing Amazon S3 error result: root element is not 'Error'."
    explicit CS3ErrorResponse(wxXmlNode* root);
    CS3ErrorResponse(const CS3ErrorResponse&);
    CS3ErrorResponse(CS3ErrorResponse&&) noexcept;
    CS3ErrorResponse& operator=(const CS3ErrorResponse&);
    CS3ErrorResponse& operator=(CS3ErrorResponse&&) noexcept;
    ~CS3ErrorResponse() override;

    /// The code "NoSuchKey" with "The resource you requested does not exist" and no request id.
    [[nodiscard]] static kel::P<CS3ErrorResponse> createObjectNotFoundResponse(const kel::String& resource);

    /// Such as "NoSuchKey".
    [[nodiscard]] kel::String getCode() const { return code_; }
    /// The service's explanation for people.
    [[nodiscard]] kel::String getMessage() const { return message_; }
    /// The bucket or object that the error is about.
    [[nodiscard]] kel::String getResource() const { return resource_; }
    /// What the service knows the request by.
    [[nodiscard]] kel::String getRequestID() const { return requestID_; }

private:
    void read(const wxXmlNode* root);

    kel::String code_;
    kel::String message_;
    kel::String resource_;
    kel::String requestID_;
};

/// The service refused a request. The code is the HTTP status, in the domain "http"; 0 when the error came in
/// an answer of success. Parameters: "s3-resource", "s3-requestID", "s3-code" and, for a status above 0,
/// "responseCode", as CCURLError has it.
///
/// Thread safety: not changed after it was made; any thread may read it.
class VANTRA_API CS3Error : public kel::CError {
public:
    /// @param httpStatus 0 or less when there is none.
    CS3Error(const CS3ErrorResponse& response, int httpStatus);
    CS3Error(const CS3Error&);
    CS3Error& operator=(const CS3Error&);
    ~CS3Error() override;

    /// "Amazon S3 error: MESSAGE(CODE)"
    [[nodiscard]] static kel::String makeErrorText(const CS3ErrorResponse& response);
    /// The error of a missing object, as from createObjectNotFoundResponse(), with the status 404.
    [[nodiscard]] static kel::P<CS3Error> createObjectNotFoundError(const kel::String& resource);

    /// Such as "NoSuchKey".
    [[nodiscard]] kel::String getS3Code() const { return s3Code_; }

    [[nodiscard]] kel::P<kel::CError> clone() const override;
    [[noreturn]] void throwClone() const override;

private:
    kel::String s3Code_;
};

} // namespace vantra
