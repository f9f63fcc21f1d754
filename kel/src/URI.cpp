#include "kel/URI.h"

#include <string>
#include <string_view>

namespace kel {

namespace {

bool isUnreserved(char c) noexcept {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '-' ||
           c == '.' || c == '_' || c == '~';
}

bool isASCII(char c) noexcept { return static_cast<unsigned char>(c) < 0x80; }

} // namespace

String CURI::escape(const String& text, bool lowerCaseHex, const String& keep) {
    const std::string kept = keep.toUTF8();
    const std::string_view digits = lowerCaseHex ? "0123456789abcdef" : "0123456789ABCDEF";
    std::string escaped;
    for (const char c : text.toUTF8()) {
        if (isUnreserved(c) || (isASCII(c) && kept.find(c) != std::string::npos)) {
            escaped += c;
        } else {
            const auto byte = static_cast<unsigned char>(c);
            escaped += '%';
            escaped += digits[byte >> 4];
            escaped += digits[byte & 0xF];
        }
    }
    return String::fromLatin1(escaped);
}

} // namespace kel
