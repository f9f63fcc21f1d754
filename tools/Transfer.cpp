#include "Transfer.h"

#include "Interrupt.h"
#include "TerminalText.h"

#include <vantra/CURLError.h>

namespace vantra::tool {

using kel::CError;
using kel::P;
using kel::String;

namespace {

constexpr std::size_t maxShownMessage = 1000;

/// libcurl's CURLOPT_XFERINFOFUNCTION.
int stopWhenInterrupted(void* /*data*/, curl_off_t /*downloadTotal*/, curl_off_t /*downloaded*/,
                        curl_off_t /*uploadTotal*/, curl_off_t /*uploaded*/) noexcept {
    return isInterrupted() ? 1 : 0;
}

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

String describe(const CError& error, const CNetRequest& request, const CResponseSink& sink) {
    if (getHTTPStatusCodeFromError(error) != -1)
        return joinUnlessEmpty(request.getHTTPStatusLine(), sink.getServerMessage());
    const bool isFTP = request.getResponseCodeDomain() == "ftp";
    return joinUnlessEmpty(error.getMessage(),
                           isFTP ? findFTPReply(request.getResponseInfo(), request.getResponseCode())
                                 : String());
}

bool isTransferError(const CError& error) {
    return error.getCodeDomain() == "curl" || error.getCodeDomain() == "http";
}

} // namespace

void performTransfer(CNetRequest& request, const CURLArgument& url, CResponseSink& sink) {
    request.setReceiveDataSink(&sink);
    request.setOptionInt(CURLOPT_NOPROGRESS, 0);
    curl_easy_setopt(request.getHandle(), CURLOPT_XFERINFOFUNCTION, &stopWhenInterrupted);
    try {
        request.perform();
    } catch (const CError& error) {
        if (!isTransferError(error)) throw;
        throw CError(url.getText() + ": " + describe(error, request, sink));
    }
    sink.finish();
}

} // namespace vantra::tool
