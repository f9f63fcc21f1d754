#include "vantra/MimeMessage.h"

#include "vantra/NetRequest.h"

#include <kel/MemoryStream.h>

#include <algorithm>
#include <string>
#include <string_view>

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
    void append(char32_t character) {
        if (isLetterOrDigit(character)) {
            chunk_ += static_cast<char>(character);
        } else {
            for (const char byte : String::fromUTF32({&character, 1}).toUTF8()) appendEscaped(byte);
        }
        if (chunk_.size() + longestCharacter > budget) closeWord();
    }

    String take() {
        if (!chunk_.empty()) closeWord();
        return String(words_);
    }

private:
    static constexpr std::string_view prefix = "=?utf-8?q?";
    static constexpr std::string_view suffix = "?=";
    static constexpr std::size_t budget = 75 - prefix.size() - suffix.size();
    static constexpr std::size_t longestCharacter = 18; // room that is left for one more character

    static bool isLetterOrDigit(char32_t c) noexcept {
        return (c >= U'A' && c <= U'Z') || (c >= U'a' && c <= U'z') || (c >= U'0' && c <= U'9');
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
    return name + ": " + (isASCII(value.view()) ? value : toEncodedWord(value));
}

String CMimeMessage::toEncodedWord(const String& text) {
    EncodedWords words;
    // By code point: a word must not end between the halves of a surrogate pair.
    for (const char32_t character : text.toUTF32()) words.append(character);
    return words.take();
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
