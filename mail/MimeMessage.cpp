#include "vantra/MimeMessage.h"

#include "vantra/NetRequest.h"

#include <kel/MemoryStream.h>

#include <algorithm>
#include <string>
#include <string_view>
#include <utility>

namespace vantra {

using kel::CMemoryStream;
using kel::IOutStream;
using kel::P;
using kel::String;
using kel::TBuffer;

namespace {

constexpr std::string_view lineEnd = "\r\n";

constexpr const char* transferEncodingName = "Content-Transfer-Encoding";

bool isASCII(std::wstring_view text) noexcept {
    return std::all_of(text.begin(), text.end(), [](wchar_t c) { return static_cast<char32_t>(c) < 128; });
}

/// Builds encoded words (RFC 2047), each no longer than 75 characters.
class EncodedWords {
public:
    /// @param utf8 one whole character.
    void append(std::string_view utf8) {
        for (const char byte : utf8) {
            if (isLetterOrDigit(byte)) {
                chunk_ += byte;
            } else {
                appendEscaped(byte);
            }
        }
        if (chunk_.size() + longestCharacter > budget) closeWord();
    }

    std::string take() {
        if (!chunk_.empty()) closeWord();
        return std::move(words_);
    }

private:
    static constexpr std::string_view prefix = "=?utf-8?q?";
    static constexpr std::string_view suffix = "?=";
    static constexpr std::size_t budget = 75 - prefix.size() - suffix.size();
    static constexpr std::size_t longestCharacter = 18; // room that is left for one more character

    static bool isLetterOrDigit(char c) noexcept {
        return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || (c >= '0' && c <= '9');
    }

    void appendEscaped(char byte) {
        static constexpr std::string_view digits = "0123456789ABCDEF";
        const auto value = static_cast<unsigned char>(byte);
        chunk_ += '=';
        chunk_ += digits[value >> 4U];
        chunk_ += digits[value & 0xFU];
    }

    void closeWord() {
        if (!words_.empty()) words_.append("\r\n ");
        words_.append(prefix).append(chunk_).append(suffix);
        chunk_.clear();
    }

    std::string words_;
    std::string chunk_; // the payload of the word that is not closed yet
};

/// The number of bytes of the character that well-formed UTF-8 begins with.
std::size_t measureCharacter(std::string_view utf8) noexcept {
    const auto isContinuation = [](char byte) { return (static_cast<unsigned char>(byte) & 0xC0U) == 0x80U; };
    std::size_t length = 1;
    while (length < utf8.size() && isContinuation(utf8[length])) ++length;
    return length;
}

} // namespace

CMimeMessage::CMimeMessage(const String& contentType) {
    headers_["MIME-Version"] = "1.0";
    if (!contentType.isEmpty()) headers_["Content-Type"] = contentType;
}

CMimeMessage::~CMimeMessage() = default;

void CMimeMessage::setBody(const TBuffer<unsigned char>* body, const String& transferEncoding) {
    body_ = body;
    if (transferEncoding.isEmpty()) {
        headers_.erase(transferEncodingName);
    } else {
        headers_[transferEncodingName] = transferEncoding;
    }
}

void CMimeMessage::store(IOutStream& out) const {
    storeHeader(out);
    storeBody(out);
}

void CMimeMessage::storeHeader(IOutStream& out) const {
    std::string block;
    for (const auto& [name, value] : headers_)
        block.append(makeHeaderField(name, value).toLatin1()).append(lineEnd);
    block.append(lineEnd);
    out.write(block.data(), block.size());
}

void CMimeMessage::storeBody(IOutStream& out) const {
    if (body_ && !body_->isEmpty()) out.write(body_->getData(), body_->getUsed());
}

String CMimeMessage::makeHeaderField(const String& name, const String& value) {
    String field = name;
    field.append(L": ");
    if (isASCII(value.view())) {
        field.append(value.view());
    } else {
        field.append(toEncodedWord(value).view());
    }
    return field;
}

String CMimeMessage::toEncodedWord(const String& text) {
    EncodedWords words;
    const std::string utf8 = text.toUTF8();
    std::string_view rest = utf8;
    while (!rest.empty()) {
        const std::size_t length = measureCharacter(rest);
        words.append(rest.substr(0, length));
        rest.remove_prefix(length);
    }
    return String(words.take());
}

String CMimeMessage::toQuotedString(const String& text) {
    String quoted = L"\"";
    quoted.reserve(text.length() + 2);
    for (const wchar_t c : text.view()) {
        if (c == L'\\' || c == L'"' || c == L'\r') quoted += L'\\';
        quoted += c;
    }
    return quoted += L'"';
}

void CMimeMessage::updateNetHeaders(CNetHeaders& netHeaders) const {
    for (const auto& [name, value] : headers_) netHeaders.add(name, value);
}

void CMimeMessage::fillRequest(CNetRequest& request) const {
    P<CNetHeaders> netHeaders = request.getCustomHTTPHeaders();
    if (!netHeaders) {
        netHeaders = new CNetHeaders();
        request.setCustomHTTPHeaders(netHeaders);
    }
    updateNetHeaders(*netHeaders);

    const P<CMemoryStream> body = new CMemoryStream();
    storeBody(*body);
    body->seek(0);
    request.setSendDataStream(body);
    request.setSendDataSize(body->getSize());
}

} // namespace vantra
