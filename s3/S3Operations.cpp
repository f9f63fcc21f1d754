#include "vantra/S3Client.h"

#include "http/LineEnd.h"

#include <kel/Error.h>
#include <kel/MemoryStream.h>
#include <kel/Number.h>
#include <sigil/Base64.h>
#include <sigil/Digest.h>

#include <limits>

namespace vantra {

using kel::CError;
using kel::CInvalidArgError;
using kel::CMemoryInStream;
using kel::int64;
using kel::P;
using kel::String;
using kel::TBuffer;
using kel::TMap;

namespace {

constexpr int notFound = 404;

void checkBucket(const char* function, const String& bucket) {
    if (bucket.isEmpty()) throw CInvalidArgError(function, "bucket name must not be empty");
}

void checkNames(const char* function, const String& bucket, const String& object) {
    checkBucket(function, bucket);
    if (object.isEmpty()) throw CInvalidArgError(function, "object name must not be empty");
}

/// A service ignores a range that it cannot read, and would send everything.
void checkRange(const char* function, int64 start, int64 length) {
    const bool isValid =
        start >= 0 && length >= -1 && (length < 1 || start <= std::numeric_limits<int64>::max() - length);
    if (!isValid) throw CInvalidArgError(function, "invalid range");
}

String makeRange(int64 start, int64 length) {
    String range = "bytes=" + String::fromInt(start) + "-";
    if (length != -1) range += String::fromInt(start + length - 1);
    return range;
}

void addParameter(String& query, const char* name, const String& escapedValue) {
    query += query.isEmpty() ? "?" : "&";
    query += name + escapedValue;
}

bool isStatusNotFound(const CError& error) {
    if (const auto* transfer = dynamic_cast<const CCURLError*>(&error))
        return transfer->getResponseCodeDomain() == "http" && transfer->getResponseCode() == notFound;
    return error.getCodeDomain() == "http" && error.getCode() == notFound;
}

} // namespace

String CS3Client::getObjectURL(CNetRequest& request, const String& bucket, const String& object) const {
    return baseURL_ + request.urlEscape(bucket) + "/" + request.urlEscape(object);
}

void CS3Client::preparePutObjectRequest(CNetRequest& request, const String& bucket, const String& object,
                                        const void* data, int size, const String& contentType) {
    constexpr const char* function = "CS3Client::preparePutObjectRequest";
    checkNames(function, bucket, object);
    if (size < 0) throw CInvalidArgError(function, "size must not be negative");
    if (!data && size > 0) throw CInvalidArgError(function, "data must not be null");
    if (hasLineEnd(contentType.view()))
        throw CInvalidArgError(function, "content type contains a line break or a NUL character");
    const auto byteCount = static_cast<std::size_t>(size);
    const P<CNetHeaders> headers = beginPrepareRequest(request, getObjectURL(request, bucket, object));
    request.setHTTPMethod("PUT");
    md5_->reset();
    md5_->update(data, byteCount);
    md5_->finish();
    const TBuffer<unsigned char>& digest = md5_->getDigest();
    headers->add("Content-MD5", sigil::base64Encode(digest.getData(), digest.getUsed()));
    if (!contentType.isEmpty()) headers->add("Content-Type", contentType);
    request.setSendDataStream(new CMemoryInStream(data, byteCount));
    request.setSendDataSize(size);
    finishPrepareRequest(request);
}

void CS3Client::prepareGetObjectRequest(CNetRequest& request, const String& bucket, const String& object,
                                        int64 start, int64 length) {
    constexpr const char* function = "CS3Client::prepareGetObjectRequest";
    checkNames(function, bucket, object);
    if (length != 0) checkRange(function, start, length);
    const P<CNetHeaders> headers = beginPrepareRequest(request, getObjectURL(request, bucket, object));
    const bool isWhole = start == 0 && length == -1;
    if (length == 0) {
        request.setHTTPMethod("HEAD");
    } else if (!isWhole) {
        headers->add("Range", makeRange(start, length));
    }
    finishPrepareRequest(request);
}

void CS3Client::prepareGetObjectHeadersRequest(CNetRequest& request, const String& bucket,
                                               const String& object) {
    checkNames("CS3Client::prepareGetObjectHeadersRequest", bucket, object);
    const P<CNetHeaders> headers = beginPrepareRequest(request, getObjectURL(request, bucket, object));
    request.setHTTPMethod("HEAD");
    finishPrepareRequest(request);
}

void CS3Client::prepareCopyObjectRequest(CNetRequest& request, const String& bucket,
                                         const String& existingObject, const String& newObject) {
    constexpr const char* function = "CS3Client::prepareCopyObjectRequest";
    checkBucket(function, bucket);
    if (existingObject.isEmpty() || newObject.isEmpty())
        throw CInvalidArgError(function, "neither the existing nor the new object name may be empty");
    const P<CNetHeaders> headers = beginPrepareRequest(request, getObjectURL(request, bucket, newObject));
    request.setHTTPMethod("PUT");
    headers->add("x-amz-copy-source",
                 "/" + request.urlEscape(bucket) + "/" + request.urlEscape(existingObject));
    request.setSendDataSize(0);
    finishPrepareRequest(request);
}

void CS3Client::prepareDeleteObjectRequest(CNetRequest& request, const String& bucket, const String& object) {
    checkNames("CS3Client::prepareDeleteObjectRequest", bucket, object);
    const P<CNetHeaders> headers = beginPrepareRequest(request, getObjectURL(request, bucket, object));
    request.setHTTPMethod("DELETE");
    finishPrepareRequest(request);
}

void CS3Client::prepareListObjectsRequest(CNetRequest& request, const String& bucket, const String& prefix,
                                          const String& delimiter, const String& marker, int maxKeys) {
    checkBucket("CS3Client::prepareListObjectsRequest", bucket);
    String query;
    if (!prefix.isEmpty()) addParameter(query, "prefix=", request.urlEscape(prefix));
    if (!marker.isEmpty()) addParameter(query, "marker=", request.urlEscape(marker));
    if (maxKeys != -1) addParameter(query, "max-keys=", String::fromInt(maxKeys));
    if (!delimiter.isEmpty()) addParameter(query, "delimiter=", request.urlEscape(delimiter));
    const P<CNetHeaders> headers = beginPrepareRequest(request, baseURL_ + request.urlEscape(bucket) + query);
    finishPrepareRequest(request);
}

void CS3Client::putObject(CNetRequest& request, const String& bucket, const String& object, const void* data,
                          int size, const String& contentType) {
    preparePutObjectRequest(request, bucket, object, data, size, contentType);
    performRequest(request);
}

void CS3Client::getObject(CNetRequest& request, const String& bucket, const String& object, int64 start,
                          int64 length) {
    prepareGetObjectRequest(request, bucket, object, start, length);
    performRequest(request);
}

const TMap<String, String>& CS3Client::getObjectHeaders(CNetRequest& request, const String& bucket,
                                                        const String& object) {
    prepareGetObjectHeadersRequest(request, bucket, object);
    performRequest(request);
    return request.getResponseHeaderMap();
}

int64 CS3Client::getObjectSize(CNetRequest& request, const String& bucket, const String& object) {
    const TMap<String, String>& headers = getObjectHeaders(request, bucket, object);
    const auto length = headers.find("content-length");
    if (length == headers.end())
        throw CError("Error: Content-Length header was expected but not included in response.");
    return kel::parseInt64(length->second, false);
}

bool CS3Client::objectExists(CNetRequest& request, const String& bucket, const String& object) {
    prepareGetObjectHeadersRequest(request, bucket, object);
    try {
        performRequest(request);
        return true;
    } catch (const CError& error) {
        if (isStatusNotFound(error)) return false;
        throw;
    }
}

void CS3Client::copyObject(CNetRequest& request, const String& bucket, const String& existingObject,
                           const String& newObject) {
    prepareCopyObjectRequest(request, bucket, existingObject, newObject);
    request.perform();
    checkCopyObjectResult(request.getDefaultReceiveBuffer());
}

void CS3Client::deleteObject(CNetRequest& request, const String& bucket, const String& object) {
    prepareDeleteObjectRequest(request, bucket, object);
    performRequest(request);
}

P<CS3ListObjectsResult> CS3Client::listObjects(CNetRequest& request, const String& bucket,
                                               const String& prefix, const String& delimiter,
                                               const String& marker, int maxKeys) {
    prepareListObjectsRequest(request, bucket, prefix, delimiter, marker, maxKeys);
    performRequest(request);
    return new CS3ListObjectsResult(request.getDefaultReceiveBuffer());
}

void CS3Client::checkCopyObjectResult(const TBuffer<unsigned char>* receivedData) {
    const CS3CopyObjectResult result(receivedData);
    if (result.hadError()) throw CS3Error(*result.getErrorResponse(), 0);
}

} // namespace vantra
