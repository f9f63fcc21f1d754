#include "vantra/MimeEncoding.h"
#include "fuzz/Fuzz.h"

#include <kel/Number.h>

#include <algorithm>
#include <string>

using kel::String;
using vantra::CMimeMessage;

namespace {

using Bytes = kel::TBuffer<unsigned char>;

std::string_view viewOf(const Bytes& bytes) {
    return {reinterpret_cast<const char*>(bytes.getData()), bytes.getUsed()};
}

char decodeHex(std::string_view digits) {
    const auto value = [](char digit) { return kel::hexDecodeCharLax(static_cast<wchar_t>(digit)); };
    return static_cast<char>(static_cast<unsigned char>(value(digits[0]) * 16 + value(digits[1])));
}

/// Whether no line, without its CR LF, is longer.
bool hasLinesUpTo(std::size_t longest, std::string_view text) {
    while (!text.empty()) {
        const std::size_t length = std::min(text.find("\r\n"), text.size());
        if (length > longest) return false;
        text.remove_prefix(std::min(length + 2, text.size()));
    }
    return true;
}

std::string decodeQuotedPrintable(std::string_view text) {
    std::string bytes;
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text[i] != '=') {
            bytes += text[i];
            continue;
        }
        const std::string_view escape = text.substr(i + 1, 2);
        if (escape != "\r\n") bytes += decodeHex(escape);
        i += 2;
    }
    return bytes;
}

std::string decodeBase64Lines(std::string_view text) {
    static constexpr std::string_view alphabet =
        "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
    std::string bytes;
    unsigned int bits = 0;
    int count = 0;
    for (const char c : text) {
        const std::size_t value = alphabet.find(c);
        if (value == std::string_view::npos) continue; // line ends and padding
        bits = (bits << 6U | static_cast<unsigned int>(value)) & 0xFFFFU;
        count += 6;
        if (count < 8) continue;
        count -= 8;
        bytes += static_cast<char>(bits >> static_cast<unsigned int>(count) & 0xFFU);
    }
    return bytes;
}

/// The text that encoded words stand for, in UTF-8.
std::string decodeWords(std::string_view words) {
    static constexpr std::string_view prefix = "=?utf-8?q?";
    std::string text;
    while (!words.empty()) {
        fuzz::check(words.starts_with(prefix), "each word begins with its charset and encoding");
        words.remove_prefix(prefix.size());
        const std::size_t end = words.find("?=");
        fuzz::check(end != std::string_view::npos, "each word ends");
        text += decodeQuotedPrintable(words.substr(0, end));
        words.remove_prefix(end + 2);
        if (words.starts_with("\r\n ")) words.remove_prefix(3);
    }
    return text;
}

void checkBodies(const Bytes& bytes) {
    const auto quoted = vantra::encodeQuotedPrintable(bytes);
    fuzz::check(hasLinesUpTo(76, viewOf(*quoted)), "quoted-printable lines are short");
    fuzz::check(decodeQuotedPrintable(viewOf(*quoted)) == viewOf(bytes), "quoted-printable can be undone");
    const auto base64 = vantra::encodeBase64Lines(bytes);
    fuzz::check(hasLinesUpTo(76, viewOf(*base64)), "base64 lines are short");
    fuzz::check(decodeBase64Lines(viewOf(*base64)) == viewOf(bytes), "base64 can be undone");
}

void checkTexts(const String& text) {
    const std::string words = CMimeMessage::toEncodedWord(text).toUTF8();
    fuzz::check(hasLinesUpTo(76, words), "encoded words fit on lines");
    fuzz::check(decodeWords(words) == text.toUTF8(), "encoded words can be undone");

    const String quotedText = CMimeMessage::toQuotedString(text);
    const std::wstring_view quoted = quotedText.view();
    String unquoted;
    for (std::size_t i = 1; i + 1 < quoted.size(); ++i) {
        if (quoted[i] == L'\\') ++i;
        unquoted += quoted[i];
    }
    fuzz::check(unquoted == text, "a quoted string can be undone");
}

void checkFileName(const String& name) {
    const auto part = vantra::makeAttachment(name, "", Bytes());
    const String disposition = part->getHeaders().lookup("Content-Disposition");
    const std::string unfolded = disposition.replaceAll("\r\n ", "").toUTF8();
    fuzz::check(std::all_of(unfolded.begin(), unfolded.end(), [](char c) { return c >= ' ' && c <= '~'; }),
                "a file name cannot break the header block");
    fuzz::check(hasLinesUpTo(998 - std::string("Content-Disposition: ").size(), disposition.toUTF8()),
                "a file name fits on lines");
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    checkBodies(Bytes(data, size));
    const String text = fuzz::toText(data, size);
    checkTexts(text);
    checkFileName(text);
    return 0;
}
