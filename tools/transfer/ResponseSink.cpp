#include "transfer/ResponseSink.h"

#include <vantra/HTTPContentRange.h>

#include <algorithm>
#include <string>

namespace vantra::tool {

using kel::CError;
using kel::P;
using kel::String;
using kel::TMap;

namespace {

constexpr std::size_t maxErrorBodyBytes = 65536;

bool isSuccess(int status) { return status >= 200 && status <= 299; }

/// The lines up to the last blank one; what follows it are trailers (RFC 9112 §7.1.2) and not ahead of the
/// body.
std::string getHeaderBlocks(const CNetStringList& lines) {
    std::string text;
    std::size_t end = 0;
    const P<CNetStringList::CIterator> line = lines.createIterator();
    while (line->next()) {
        text += line->getEntry().toUTF8();
        if (line->getEntry().trim().isEmpty()) end = text.size();
    }
    text.resize(end);
    return text;
}

/// -1 when the header does not tell.
kel::int64 getFirstPosition(const String& contentRange) {
    try {
        return CHTTPContentRange::parse(contentRange)->getFirst();
    } catch (const CError&) {
        return CHTTPContentRange::unknown;
    }
}

} // namespace

CResponseSink::CResponseSink(const CNetRequest& request, IOutput& output, bool includeHeaders)
    : request_(request), output_(output), headersPending_(includeHeaders) {}

CResponseSink::~CResponseSink() = default;

void CResponseSink::write(const void* data, unsigned int length, int /*httpStatusCode*/,
                          const TMap<String, String>& /*responseHeaders*/) {
    // The request's own word decides on success in the end too, however odd the status line looks.
    const int status = request_.getResponseCode();
    if (request_.getResponseCodeDomain() == "http" && !isSuccess(status)) {
        keepErrorBody(static_cast<const unsigned char*>(data), length, status);
        return;
    }
    checkRangeOnce(status);
    writeHeadersOnce();
    output_.write({static_cast<const char*>(data), length});
}

void CResponseSink::finish() { writeHeadersOnce(); }

/// A server may ignore the header "Range" (RFC 9110 §14.2). Its answer is then not what the user asked for.
void CResponseSink::checkRangeOnce(int status) {
    constexpr int partialContent = 206;
    if (!range_) return;
    const CRangeArgument range = *range_;
    range_.reset();
    if (request_.getResponseCodeDomain() != "http" || range.isWhole()) return;
    if (status != partialContent ||
        getFirstPosition(request_.getResponseHeaderMap().lookup("content-range")) != range.getFirst())
        throw CError(request_.getURL() + ": the server does not send the range asked for.");
}

void CResponseSink::writeHeadersOnce() {
    if (!headersPending_) return;
    headersPending_ = false;
    output_.write(getHeaderBlocks(request_.getResponseInfo()));
}

void CResponseSink::keepErrorBody(const unsigned char* data, std::size_t length, int status) {
    errorBody_.append(data, std::min(length, maxErrorBodyBytes - errorBody_.getUsed()));
    if (errorBody_.getUsed() == maxErrorBodyBytes)
        throw CError("The server's message is very long.", "http", status);
}

String CResponseSink::getServerMessage() const {
    return CNetRequest::getServerErrorMessageFromResponseData(
        errorBody_.getData(), static_cast<int>(errorBody_.getUsed()), request_.getResponseHeaderMap());
}

} // namespace vantra::tool
