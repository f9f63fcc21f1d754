/// @file vantra/S3Client.h
/// Amazon S3 and compatible stores.
///
///     P<CS3Client> client = new CS3Client(accessKeyID, secretAccessKey, true);
///     P<CNetRequest> request = new CNetRequest();
///     client->putObject(*request, "bucket", "notes/today.txt", text.data(), size, "text/plain");
///     client->getObject(*request, "bucket", "notes/today.txt", 0, -1);
///     P<TBuffer<unsigned char>> copy = new TBuffer<unsigned char>(*request->getDefaultReceiveBuffer());
#pragma once

#include "vantra/CURLError.h"
#include "vantra/Export.h"
#include "vantra/NetHeaders.h"
#include "vantra/NetRequest.h"
#include "vantra/S3Error.h"
#include "vantra/S3Results.h"

#include <kel/Base.h>
#include <kel/Buffer.h>
#include <kel/Int64.h>
#include <kel/Map.h>
#include <kel/P.h>
#include <kel/String.h>

#include <exception>
#include <string>

namespace sigil {
class IDigestType;
}

namespace vantra {

/// Prepares, signs and performs requests to an object store: the REST interface of Amazon S3 with path-style
/// URLs and the "AWS" header signature (HMAC-SHA1).
///
/// Each operation takes a request of the caller's, resets it, prepares it and performs it; its outcome stays
/// in the request. Every setting that the caller made before is gone then: to perform a request with settings
/// or a sink of one's own, prepare it, change it, and call performRequest(). The prepare... members may also
/// be used alone, say with CAsyncNetRequestThread; a prepared request is signed with the time of day, for
/// which stores usually allow a quarter of an hour.
///
/// Failures: kel::CInvalidArgError for an empty name ("bucket name must not be empty", "object name must not
/// be empty", and for a copy "neither the existing nor the new object name may be empty"), with nothing done
/// to the request; CS3Error when the service explained its refusal; CCURLError for everything else that goes
/// wrong in a transfer.
///
/// Thread safety: one thread at a time. Distinct clients, copies included, share nothing that is not safe
/// but the MD5 computation, so that a copy must not upload while its original does on another thread.
class VANTRA_API CS3Client : public kel::CBase {
public:
    /// @param accessKeyID is sent in clear. @param secretAccessKey stays within the client; only signatures
    /// leave it.
    /// @param useHTTPS whether the default endpoint is "https://s3.amazonaws.com/" or
    /// "http://s3.amazonaws.com/".
    /// @throws kel::CInvalidArgError "access key id contains a line break or a NUL character"
    CS3Client(const kel::String& accessKeyID, const kel::String& secretAccessKey, bool useHTTPS);
    CS3Client(const CS3Client&);
    CS3Client& operator=(const CS3Client&);
    ~CS3Client() override;

    // Settings

    /// The store to talk to in place of the default one: "http" or "https", a host, optionally a port and a
    /// path, which must be in escaped form ("https://store.example:8080/s3"). Kept with the scheme in lower
    /// case and a "/" at the end.
    /// @throws kel::CInvalidArgError "invalid endpoint URL: 'URL'" for anything else, such as a URL with a
    /// user name, query or fragment; the endpoint stays as it was then.
    void setEndpoint(const kel::String& baseURL);
    /// The store in use, in the form in which it is kept.
    [[nodiscard]] const kel::String& getEndpoint() const noexcept { return baseURL_; }

    /// How often performRequest() tries again, 0 or less for never. Default: 50.
    void setMaxRetries(int maxRetries) noexcept { maxRetries_ = maxRetries; }
    /// Whether prepared requests record their transfers (CNetRequest::setVerbose). Default: false.
    void setPrintDebugInfo(bool printDebugInfo) noexcept { printDebugInfo_ = printDebugInfo; }
    /// Whether the store's certificate must be vouched for by a root (CNetRequest::setSSLVerifyPeer).
    /// Default: true.
    void setSSLVerifyPeer(bool verify) noexcept { sslVerifyPeer_ = verify; }

    // Operations

    /// Uploads `size` bytes at `data` as an object, replacing one of that name. The service compares them
    /// with their MD5 digest. @param contentType such as "text/plain"; empty for the service's default.
    void putObject(CNetRequest& request, const kel::String& bucket, const kel::String& object,
                   const void* data, int size, const kel::String& contentType);

    /// Downloads an object into the request's default receive buffer: `length` bytes from `start` on, -1 for
    /// all that follow. A length of 0 asks for the headers alone.
    /// @throws kel::CInvalidArgError "invalid range" for a negative start, a length below -1 and an end
    /// beyond 64 bits.
    void getObject(CNetRequest& request, const kel::String& bucket, const kel::String& object,
                   kel::int64 start, kel::int64 length);

    /// The headers that a download would have, by lower-cased name; they stay the request's.
    const kel::TMap<kel::String, kel::String>&
    getObjectHeaders(CNetRequest& request, const kel::String& bucket, const kel::String& object);

    /// An object's size in bytes.
    /// @throws kel::CError "Error: Content-Length header was expected but not included in response."
    [[nodiscard]] kel::int64 getObjectSize(CNetRequest& request, const kel::String& bucket,
                                           const kel::String& object);

    /// Whether there is such an object: false for the HTTP status 404, any other failure is thrown.
    [[nodiscard]] bool objectExists(CNetRequest& request, const kel::String& bucket,
                                    const kel::String& object);

    /// Copies an object within a bucket, on the service's side. Tried once; a refusal is thrown as the
    /// request's own CCURLError, except for one that comes in an answer of success, which is a CS3Error.
    void copyObject(CNetRequest& request, const kel::String& bucket, const kel::String& existingObject,
                    const kel::String& newObject);

    /// Deletes an object. Amazon S3 does not mind when there is none of that name, other stores may.
    void deleteObject(CNetRequest& request, const kel::String& bucket, const kel::String& object);

    /// A page of the bucket's objects, in the order of their keys' UTF-8 bytes.
    /// @param prefix of the keys; may be empty, as may the next two.
    /// @param delimiter keys are rolled up in a common prefix where it follows the prefix.
    /// @param marker the keys listed come after it.
    /// @param maxKeys the most entries of the page; -1 for as many as the service gives, usually 1000.
    [[nodiscard]] kel::P<CS3ListObjectsResult> listObjects(CNetRequest& request, const kel::String& bucket,
                                                           const kel::String& prefix,
                                                           const kel::String& delimiter,
                                                           const kel::String& marker, int maxKeys);

    /// Looks for an error in the answer to a copy. @throws CS3Error with the status 0; as
    /// CS3CopyObjectResult.
    static void checkCopyObjectResult(const kel::TBuffer<unsigned char>* receivedData);

    // Preparing requests; see the operations of these names

    /// The bytes at `data` are not copied: they must be there until the request was performed, each retry
    /// included.
    /// @throws kel::CInvalidArgError also "size must not be negative", "data must not be null" (with a size
    /// above 0) and "content type contains a line break or a NUL character".
    void preparePutObjectRequest(CNetRequest& request, const kel::String& bucket, const kel::String& object,
                                 const void* data, int size, const kel::String& contentType);
    /// @throws kel::CInvalidArgError also "invalid range", as getObject().
    void prepareGetObjectRequest(CNetRequest& request, const kel::String& bucket, const kel::String& object,
                                 kel::int64 start, kel::int64 length);
    /// @{
    /// The request that the operation of this name performs.
    void prepareGetObjectHeadersRequest(CNetRequest& request, const kel::String& bucket,
                                        const kel::String& object);
    void prepareCopyObjectRequest(CNetRequest& request, const kel::String& bucket,
                                  const kel::String& existingObject, const kel::String& newObject);
    void prepareDeleteObjectRequest(CNetRequest& request, const kel::String& bucket,
                                    const kel::String& object);
    void prepareListObjectsRequest(CNetRequest& request, const kel::String& bucket, const kel::String& prefix,
                                   const kel::String& delimiter, const kel::String& marker, int maxKeys);
    /// @}

    /// The endpoint, the bucket, "/" and the object's name, both escaped ("/" as "%2F"). Objects called "."
    /// or ".." are asked for by these names (CURLOPT_PATH_AS_IS).
    [[nodiscard]] kel::String getObjectURL(CNetRequest& request, const kel::String& bucket,
                                           const kel::String& object) const;

    // Performing

    /// Performs a prepared request, again and again as long as it fails in a way that may pass, with 100
    /// milliseconds in between; the request is the same each time, signature included. Each failure that is
    /// followed by another try is logged as information, the last one as an error, and "Received slowdown
    /// response from S3" as a warning. @return the number of tries.
    /// @throws CS3Error when the body of the answer was an error document; otherwise what
    /// CNetRequest::perform throws.
    int performRequest(CNetRequest& request) const;

    /// Whether a failure may pass. An error of the service: "InternalError", "SlowDown", "IncompleteBody",
    /// "InvalidDigest", "OperationAborted" and "RequestTimeTooSkewed"; another one with a response code: 500,
    /// 503, 400 and 409; otherwise libcurl's codes 7, 28, 52, 55 and 56.
    [[nodiscard]] static bool shouldRetryRequest(const std::exception& error);
    /// Whether the service asks for fewer requests: "SlowDown", or 503 without an error document.
    [[nodiscard]] static bool shouldSlowDown(const std::exception& error);
    /// Whether the object or bucket is missing: 404, "NoSuchKey" or "NoSuchBucket".
    [[nodiscard]] static bool isNotFoundError(const std::exception& error);
    /// The service's code and the response code in decimal, each empty when there is none.
    static void extractErrorCodes(const std::exception& error, kel::String& s3Code, kel::String& httpCode);
    /// Throws the CS3Error for a CCURLError whose response holds an error document. Returns for any other
    /// error or response; a response that is something else is logged.
    static void tryThrowBetterError(std::exception& error, const kel::TBuffer<unsigned char>& responseData);

    // Signing

    /// Adds the header "Authorization", for the request as it is. An "x-amz-" header of the caller's own must
    /// have a value: an empty one would be signed, but libcurl does not send it.
    /// @throws kel::CInvalidArgError "request must not be null", here and below; as getCanonicalizedResource.
    void signRequest(CNetRequest* request);
    /// The base64 text of the HMAC-SHA1 of the text to sign.
    [[nodiscard]] kel::String getSignature(CNetRequest* request);
    /// Method, "content-md5", "content-type", date, "x-amz-" headers and resource. An empty method counts as
    /// "GET"; the values of a header that was added twice are joined with "," (CNetHeaders::fillMap).
    /// @throws as getCanonicalizedResource.
    [[nodiscard]] static kel::String getStringToSign(CNetRequest* request);
    /// "name:value\n" for each header whose name, which has to be in lower case already, begins with
    /// "x-amz-", in the order of the names' code units.
    [[nodiscard]] static kel::String
    getCanonicalizedAMZHeaders(const kel::TMap<kel::String, kel::String>& headers);
    /// The path of a URL as it is spelt, and its query if there is neither "=" nor "&" in it.
    /// @throws kel::CError "Invalid Amazon S3 query URL: 'URL'."
    [[nodiscard]] static kel::String getCanonicalizedResource(const kel::String& url);
    /// Joins the lines of a value: a line feed and the white space behind it become one blank.
    static void makeSingleLineHeaderValue(kel::String& value);

protected:
    /// Resets the request and gives it the URL, the client's settings and the header "Date". The result is
    /// the request's collection of headers, to add to.
    [[nodiscard]] kel::P<CNetHeaders> beginPrepareRequest(CNetRequest& request, const kel::String& url) const;
    /// Signs. No header that counts for the signature may be added afterwards.
    void finishPrepareRequest(CNetRequest& request);
    /// The value under exactly this name, or empty.
    [[nodiscard]] static kel::String getHeaderFromMap(const kel::TMap<kel::String, kel::String>& headers,
                                                      const kel::String& name);

private:
    kel::String baseURL_; // ends in "/"
    kel::P<sigil::IDigestType> md5_;
    kel::String accessKeyID_;
    kel::String secretAccessKey_;
    std::string secretKeyBytes_; // the secret key in UTF-8
    int maxRetries_ = 50;
    bool printDebugInfo_ = false;
    bool sslVerifyPeer_ = true;
    kel::TBuffer<unsigned char> signatureBuffer_;
};

} // namespace vantra
