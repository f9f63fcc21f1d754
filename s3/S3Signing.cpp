#include "vantra/S3Client.h"

#include <kel/Error.h>
#include <kel/Time.h>
#include <sigil/Base64.h>
#include <sigil/HMAC.h>

namespace vantra {

using kel::CError;
using kel::CInvalidArgError;
using kel::CTime;
using kel::CTimeFields;
using kel::P;
using kel::String;
using kel::TMap;

namespace {

constexpr std::wstring_view amzHeaderStart = L"x-amz-";

void checkRequest(const char* function, const CNetRequest* request) {
    if (!request) throw CInvalidArgError(function, "request must not be null");
}

} // namespace

P<CNetHeaders> CS3Client::beginPrepareRequest(CNetRequest& request, const String& url) const {
    request.reset();
    request.setURL(url);
    // An object may be called "..": libcurl would ask for the path above, and that is the bucket.
    request.setOptionInt(CURLOPT_PATH_AS_IS, 1);
    request.setFollowRedirects(true);
    request.setKeepPostOnRedirect(true);
    request.setVerbose(printDebugInfo_);
    request.setSSLVerifyPeer(sslVerifyPeer_);
    P<CNetHeaders> headers = new CNetHeaders();
    headers->add("Date", CTimeFields(CTime::now()).toInternetTimestamp());
    request.setCustomHTTPHeaders(headers);
    return headers;
}

void CS3Client::finishPrepareRequest(CNetRequest& request) { signRequest(&request); }

void CS3Client::signRequest(CNetRequest* request) {
    checkRequest("CS3Client::signRequest", request);
    const P<CNetHeaders> present = request->getCustomHTTPHeaders();
    const P<CNetHeaders> headers = present ? present : P<CNetHeaders>(new CNetHeaders());
    headers->add("Authorization", "AWS " + accessKeyID_ + ":" + getSignature(request));
    if (!present) request->setCustomHTTPHeaders(headers);
}

String CS3Client::getSignature(CNetRequest* request) {
    checkRequest("CS3Client::getSignature", request);
    const std::string bytes = getStringToSign(request).toUTF8();
    sigil::calcHMAC_SHA1(secretKeyBytes_.data(), secretKeyBytes_.size(), bytes.data(), bytes.size(),
                         signatureBuffer_);
    return sigil::base64Encode(signatureBuffer_.getData(), signatureBuffer_.getUsed());
}

String CS3Client::getStringToSign(CNetRequest* request) {
    checkRequest("CS3Client::getStringToSign", request);
    TMap<String, String> headers;
    if (const P<CNetHeaders> custom = request->getCustomHTTPHeaders()) custom->fillMap(headers);
    const String& method = request->getHTTPMethod();
    String text = method.isEmpty() ? String("GET") : method;
    text += L'\n';
    text += getHeaderFromMap(headers, "content-md5");
    text += L'\n';
    text += getHeaderFromMap(headers, "content-type");
    text += L'\n';
    // The date of an "x-amz-date" header is signed among the headers of its kind.
    if (!headers.contains("x-amz-date")) text += getHeaderFromMap(headers, "date");
    text += L'\n';
    text += getCanonicalizedAMZHeaders(headers);
    text += getCanonicalizedResource(request->getURL());
    return text;
}

String CS3Client::getCanonicalizedAMZHeaders(const TMap<String, String>& headers) {
    String text;
    for (const auto& [name, value] : headers) { // the map has them in the order that is asked for
        if (!name.startsWith(amzHeaderStart)) continue;
        String line = value;
        makeSingleLineHeaderValue(line);
        text += name + ":" + line + "\n";
    }
    return text;
}

String CS3Client::getCanonicalizedResource(const String& url) {
    constexpr std::wstring_view schemeEnd = L"://";
    const std::wstring_view text = url.view();
    const std::size_t scheme = text.find(schemeEnd);
    const std::size_t path =
        scheme == std::wstring_view::npos ? scheme : text.find(L'/', scheme + schemeEnd.size());
    if (path == std::wstring_view::npos) throw CError("Invalid Amazon S3 query URL: '" + url + "'.");
    const std::wstring_view resource = text.substr(path);
    const std::size_t query = resource.find(L'?');
    const bool hasParameters =
        query != std::wstring_view::npos && resource.find_first_of(L"=&", query) != std::wstring_view::npos;
    return String(hasParameters ? resource.substr(0, query) : resource);
}

void CS3Client::makeSingleLineHeaderValue(String& value) {
    std::size_t lineEnd = value.find(L'\n');
    while (lineEnd != String::npos) {
        value = value.substr(0, lineEnd) + " " + value.substr(lineEnd).trimLeft();
        lineEnd = value.find(L'\n', lineEnd);
    }
}

String CS3Client::getHeaderFromMap(const TMap<String, String>& headers, const String& name) {
    return headers.lookup(name);
}

} // namespace vantra
