#include "transfer/TransferFailure.h"

#include "display/TerminalText.h"

#include <vantra/CURLError.h>

namespace vantra::tool {

using kel::CError;
using kel::P;
using kel::String;

namespace {

constexpr std::size_t maxShownMessage = 1000;

String joinUnlessEmpty(const String& text, const String& tail) {
    const String shown = tail.trim();
    return shown.isEmpty() ? text : text + ": " + shorten(shown, maxShownMessage);
}

/// The last reply with the code that libcurl took for the failure.
String findFTPReply(const CNetStringList& replies, int responseCode) {
    constexpr int firstErrorCode = 400;
    String found;
    if (responseCode < firstErrorCode) return found;
    const P<CNetStringList::CIterator> reply = replies.createIterator();
    while (reply->next()) {
        if (reply->getEntry().startsWith(String::fromInt(responseCode))) found = reply->getEntry();
    }
    return found;
}

bool isTransferError(const CError& error) {
    return error.getCodeDomain() == "curl" || error.getCodeDomain() == "http";
}

String describe(const CError& error, const CNetRequest& request, const String& serverMessage) {
    if (getHTTPStatusCodeFromError(error) != -1)
        return joinUnlessEmpty(request.getHTTPStatusLine(), serverMessage);
    if (request.getResponseCodeDomain() == "smtp")
        return joinUnlessEmpty(error.getMessage(), error.getParams().lookup("serverMessage"));
    const bool isFTP = request.getResponseCodeDomain() == "ftp";
    return joinUnlessEmpty(error.getMessage(),
                           isFTP ? findFTPReply(request.getResponseInfo(), request.getResponseCode())
                                 : String());
}

} // namespace

String describeTransferFailure(const CError& error, const CNetRequest& request, const String& url,
                               const String& serverMessage) {
    if (!isTransferError(error)) return error.getMessage();
    return url + ": " + describe(error, request, serverMessage);
}

} // namespace vantra::tool
