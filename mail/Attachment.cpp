#include "vantra/MimeEncoding.h"

#include <kel/Error.h>

#include <algorithm>
#include <string>
#include <string_view>

namespace vantra {

using kel::CInvalidArgError;
using kel::P;
using kel::String;
using kel::TBuffer;

namespace {

// Header lines may have 998 characters (RFC 5322 §2.1.1), and 78 should do.
constexpr std::size_t longestOnOneLine = 900;
constexpr std::size_t longestSection = 60;

bool isPrintableASCII(const String& text) {
    const std::wstring_view view = text.view();
    return std::all_of(view.begin(), view.end(), [](wchar_t c) { return c >= L' ' && c <= L'~'; });
}

/// Whether a byte of an extended parameter value stands for itself (RFC 2231 §7, attribute-char).
bool isAttributeChar(char c) {
    const bool isLetterOrDigit = (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || (c >= '0' && c <= '9');
    return isLetterOrDigit || std::string_view("!#$&+-.^_`{|}~").find(c) != std::string_view::npos;
}

std::string escapeAttribute(const std::string& utf8) {
    static constexpr char digits[] = "0123456789ABCDEF";
    std::string escaped;
    for (const char c : utf8) {
        if (isAttributeChar(c)) {
            escaped += c;
        } else {
            const auto byte = static_cast<unsigned char>(c);
            escaped += '%';
            escaped += digits[byte >> 4U];
            escaped += digits[byte & 0xFU];
        }
    }
    return escaped;
}

/// Whether a character's first byte is at a position: neither the inside of an escape nor the escape of a
/// byte that continues a UTF-8 sequence, %80 to %BF.
bool startsCharacter(std::string_view escaped, std::size_t position) {
    const std::size_t percent = escaped.substr(0, position).rfind('%');
    if (percent != std::string_view::npos && position - percent < 3) return false;
    return escaped[position] != '%' ||
           std::string_view("89AB").find(escaped[position + 1]) == std::string_view::npos;
}

/// The length of the next section. It holds whole characters, since not everybody joins sections before they
/// read them.
std::size_t measureSection(std::string_view escaped) {
    if (escaped.size() <= longestSection) return escaped.size();
    std::size_t length = longestSection;
    while (!startsCharacter(escaped, length)) --length;
    return length;
}

/// The file name as parameters for behind the disposition (RFC 2231 §3 and §4).
std::string makeExtendedFileName(const String& name) {
    const std::string escaped = escapeAttribute(name.toUTF8());
    if (escaped.size() <= longestOnOneLine) return "; filename*=UTF-8''" + escaped;
    std::string parameters;
    std::string_view rest = escaped;
    for (std::size_t number = 0; !rest.empty(); ++number) {
        const std::size_t length = measureSection(rest);
        parameters += ";\r\n filename*" + std::to_string(number) + "*=" + (number == 0 ? "UTF-8''" : "");
        parameters += rest.substr(0, length);
        rest.remove_prefix(length);
    }
    return parameters;
}

String makeDisposition(const String& name) {
    String disposition = "attachment";
    if (name.isEmpty()) return disposition;
    if (isPrintableASCII(name) && name.length() <= longestOnOneLine / 3)
        return disposition += "; filename=" + CMimeMessage::toQuotedString(name);
    return disposition += String(makeExtendedFileName(name));
}

} // namespace

P<CMimeMessage> makeAttachment(const String& name, const String& contentType,
                               const TBuffer<unsigned char>& bytes) {
    if (contentType.find(L'\r') != String::npos || contentType.find(L'\n') != String::npos)
        throw CInvalidArgError("makeAttachment", "content type contains a line break");
    P<CMimeMessage> part =
        new CMimeMessage(contentType.isEmpty() ? String("application/octet-stream") : contentType);
    part->getHeaders()["Content-Disposition"] = makeDisposition(name);
    part->setBody(encodeBase64Lines(bytes), "base64");
    return part;
}

} // namespace vantra
