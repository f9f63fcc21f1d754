#include "vantra/CURLError.h"

#include <kel/Number.h>

namespace vantra {

using kel::CError;
using kel::CProps;
using kel::int64;
using kel::P;
using kel::String;

namespace {

String makeErrorText(const char* codeText, const char* unknownCodeText, const String& message) {
    String text = String::fromUTF8Lax(codeText ? codeText : unknownCodeText);
    if (!message.isEmpty()) text += ": " + message;
    return text;
}

CProps makeParams(const String& responseCodeDomain, int responseCode, const String& serverMessage,
                  const String& httpStatusLine, const String& url, const String& httpMethod) {
    CProps params;
    params.addCond(!responseCodeDomain.isEmpty(), "responseCodeDomain", responseCodeDomain)
        .addCond(responseCode > 0, "responseCode", String::fromInt(responseCode))
        .addCond(!serverMessage.isEmpty(), "serverMessage", serverMessage)
        .addCond(!httpStatusLine.isEmpty(), "httpStatusLine", httpStatusLine)
        .addCond(!url.isEmpty(), "url", url)
        .addCond(!httpMethod.isEmpty(), "httpMethod", httpMethod);
    return params;
}

} // namespace

CCURLError::CCURLError(CURLcode code, const String& message, const String& responseCodeDomain,
                       int responseCode, const String& serverMessage, const String& httpStatusLine,
                       const String& url, const String& httpMethod)
    : CError(makeErrorText(code, message, responseCodeDomain, responseCode), "curl", code,
             makeParams(responseCodeDomain, responseCode, serverMessage, httpStatusLine, url, httpMethod)),
      responseCodeDomain_(responseCodeDomain),
      responseCode_(responseCode),
      serverMessage_(serverMessage),
      httpStatusLine_(httpStatusLine),
      url_(url),
      httpMethod_(httpMethod) {}

CCURLError::CCURLError(CURLMcode code, const String& message, const String& responseCodeDomain,
                       int responseCode, const String& serverMessage, const String& httpStatusLine,
                       const String& url, const String& httpMethod)
    : CError(makeErrorText(code, message, responseCode), "curlm", code,
             makeParams(responseCodeDomain, responseCode, serverMessage, httpStatusLine, url, httpMethod)),
      responseCodeDomain_(responseCodeDomain),
      responseCode_(responseCode),
      serverMessage_(serverMessage),
      httpStatusLine_(httpStatusLine),
      url_(url),
      httpMethod_(httpMethod) {}

String CCURLError::makeErrorText(CURLcode code, const String& message, const String& responseCodeDomain,
                                 int responseCode) {
    String text = vantra::makeErrorText(curl_easy_strerror(code), "invalid CURL easy error code", message);
    if (responseCode > 0)
        text += " (response code: " + responseCodeDomain + " " + String::fromInt(responseCode) + ")";
    return text;
}

String CCURLError::makeErrorText(CURLMcode code, const String& message, int responseCode) {
    String text = vantra::makeErrorText(curl_multi_strerror(code), "invalid CURL multi error code", message);
    if (responseCode > 0) text += " (response code: " + String::fromInt(responseCode) + ")";
    return text;
}

int CCURLError::getResponseCode(const CProps& params) {
    const String value = params.lookup("responseCode");
    return value.isEmpty() ? -1 : static_cast<int>(kel::parseInt64(value, false));
}

String CCURLError::getResponseCodeDomain(const CProps& params) { return params.lookup("responseCodeDomain"); }

P<CError> CCURLError::clone() const { return new CCURLError(*this); }

void CCURLError::throwClone() const { throw CCURLError(*this); }

int getHTTPStatusCodeFromError(const CError& error) {
    if (error.getCodeDomain() == "http") return static_cast<int>(error.getCode());
    int status = -1;
    if (CCURLError::getResponseCodeDomain(error.getParams()) == "http")
        status = CCURLError::getResponseCode(error.getParams());
    const bool failedForAnotherReason =
        error.getCodeDomain() == "curl" && error.getCode() != CURLE_HTTP_RETURNED_ERROR;
    return failedForAnotherReason && status < 400 ? -1 : status;
}

bool isNetworkOrServiceDownError(const std::exception& exception) {
    const auto* error = dynamic_cast<const CError*>(&exception);
    if (!error || error->getCodeDomain() != "curl") return false;
    switch (error->getCode()) {
    case CURLE_COULDNT_RESOLVE_PROXY:
    case CURLE_COULDNT_RESOLVE_HOST:
    case CURLE_COULDNT_CONNECT:
    case CURLE_SSL_CONNECT_ERROR:
        return true;
    default:
        break;
    }
    const String domain = CCURLError::getResponseCodeDomain(error->getParams());
    const String code = error->getParams().lookup("responseCode");
    return (domain == "http" && code == "503") || (domain == "ftp" && code == "421");
}

} // namespace vantra
