#include "vantra/CURLError.h"
#include "vantra/NetRequest.h"

#include <kel/Log.h>

#include <algorithm>

namespace vantra {

using kel::String;
using kel::TMap;

namespace {

constexpr std::size_t maxServerMessageBytes = 4096;

/// The length without a UTF-8 sequence at the end that the text was cut in.
std::size_t getLengthWithoutCutSequence(std::string_view text) {
    constexpr std::size_t longestSequence = 4;
    for (std::size_t back = 1; back <= std::min(longestSequence, text.size()); ++back) {
        const auto byte = static_cast<unsigned char>(text[text.size() - back]);
        const bool isContinuation = (byte & 0xC0U) == 0x80U;
        if (isContinuation) continue;
        const bool isLead = byte >= 0xC2U && byte <= 0xF4U;
        const std::size_t sequence = !isLead ? 1 : byte >= 0xF0U ? 4 : byte >= 0xE0U ? 3 : 2;
        return sequence > back ? text.size() - back : text.size();
    }
    return text.size();
}

/// Every tag becomes a blank; one that is not closed takes the rest of the text with it.
String stripTags(std::wstring_view html) {
    String text;
    while (!html.empty()) {
        const std::size_t tag = html.find(L'<');
        text.append(html.substr(0, tag));
        if (tag == std::wstring_view::npos) break;
        text += L' ';
        const std::size_t tagEnd = html.find(L'>', tag);
        html.remove_prefix(tagEnd == std::wstring_view::npos ? html.size() : tagEnd + 1);
    }
    return text;
}

String replaceUntilNoneLeft(String text, const String& what, const String& with) {
    while (text.contains(what)) text = text.replaceAll(what, with);
    return text;
}

String foldWhiteSpace(const String& text) {
    String folded = text.replaceAll("\r\n", "\n").replaceAll("\t", " ").trim();
    folded = replaceUntilNoneLeft(folded, "  ", " ").replaceAll(" \n", "\n").replaceAll("\n ", "\n");
    return replaceUntilNoneLeft(folded, "\n\n", "\n");
}

/// The reply that refused: libcurl may already have said goodbye, so that the very last line answers that.
/// Without a line that begins with the code, the very last one.
String findSMTPReply(const CNetStringList& lines, int responseCode) {
    const String code = String::fromInt(responseCode);
    String last;
    String lastWithCode;
    CNetStringList::CIterator line(lines.getSList());
    while (line.next()) {
        last = line.getEntry();
        if (last.startsWith(code)) lastWithCode = last;
    }
    return (lastWithCode.isEmpty() ? last : lastWithCode).trimRight();
}

} // namespace

String CNetRequest::getServerErrorMessageFromResponseData(const unsigned char* data, int size,
                                                          const TMap<String, String>& headers) {
    try {
        if (!data || size <= 0) return "";
        std::string_view bytes(reinterpret_cast<const char*>(data), static_cast<std::size_t>(size));
        if (bytes.size() > maxServerMessageBytes) {
            bytes = bytes.substr(0, maxServerMessageBytes);
            bytes = bytes.substr(0, getLengthWithoutCutSequence(bytes));
        }
        const String text = String::fromUTF8(bytes);
        const bool isHTML = headers.lookup("content-type").startsWith(L"text/html") || text.contains("<html");
        return isHTML ? foldWhiteSpace(stripTags(text.view())) : text;
    } catch (...) {
        return "";
    }
}

String CNetRequest::getErrorMessage() const {
    String message;
    if (!String::tryFromUTF8(errorBuffer_, message)) {
        kel::logError(
            "A CURL function has failed, but the CURL error buffer does not contain valid UTF8 data.");
        message.clear();
    }
    return message;
}

String CNetRequest::getServerMessage(const String& responseCodeDomain, int responseCode) const {
    if (responseCodeDomain == "smtp" && responseCode >= 1)
        return findSMTPReply(getResponseInfo(), responseCode);
    if (responseCodeDomain == "http" && !defaultReceiveBuffer_->isEmpty()) {
        const std::size_t size = std::min(defaultReceiveBuffer_->getUsed(), maxServerMessageBytes + 1);
        return getServerErrorMessageFromResponseData(defaultReceiveBuffer_->getData(), static_cast<int>(size),
                                                     getResponseHeaderMap());
    }
    return "";
}

void CNetRequest::throwError(CURLcode code, const String& responseCodeDomain, int responseCode,
                             const String& message) const {
    const bool isHTTP = responseCodeDomain == "http";
    throw CCURLError(code, message.isEmpty() ? getErrorMessage() : message, responseCodeDomain, responseCode,
                     getServerMessage(responseCodeDomain, responseCode), isHTTP ? httpStatusLine_ : String(),
                     url_, isHTTP ? method_ : String());
}

} // namespace vantra
