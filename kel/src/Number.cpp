#include "kel/Number.h"

#include "kel/Error.h"

#include <charconv>
#include <limits>
#include <string>

namespace kel {

namespace {

bool isDigit(wchar_t c) noexcept { return c >= L'0' && c <= L'9'; }

/// Takes a sign off the front; true for a minus.
bool takeSign(std::wstring_view& text) noexcept {
    const bool negative = !text.empty() && text.front() == L'-';
    if (negative || (!text.empty() && text.front() == L'+')) text.remove_prefix(1);
    return negative;
}

/// Takes the digits off the front.
std::wstring_view takeDigits(std::wstring_view& text) noexcept {
    std::size_t count = 0;
    while (count < text.size() && isDigit(text[count])) ++count;
    const std::wstring_view digits = text.substr(0, count);
    text.remove_prefix(count);
    return digits;
}

/// @param magnitudeLimit the greatest value allowed.
bool parseDigits(std::wstring_view digits, uint64 magnitudeLimit, uint64& magnitude) noexcept {
    magnitude = 0;
    for (const wchar_t c : digits) {
        const auto digit = static_cast<uint64>(c - L'0');
        if (magnitude > (magnitudeLimit - digit) / 10) return false;
        magnitude = magnitude * 10 + digit;
    }
    return true;
}

} // namespace

int64 parseInt64(std::wstring_view text, bool allowWhiteSpace) {
    std::wstring_view rest = allowWhiteSpace ? trimView(text) : text;
    const bool negative = takeSign(rest);
    const std::wstring_view digits = takeDigits(rest);
    const uint64 limit = static_cast<uint64>(std::numeric_limits<int64>::max()) + (negative ? 1 : 0);
    uint64 magnitude = 0;
    if (digits.empty() || !rest.empty() || !parseDigits(digits, limit, magnitude))
        throw CError("Invalid integer: '" + String(text) + "'.");
    return static_cast<int64>(negative ? 0 - magnitude : magnitude);
}

int64 parseInt64(const String& text, bool allowWhiteSpace) {
    return parseInt64(text.view(), allowWhiteSpace);
}

double parseSimpleDouble(const String& text) {
    std::wstring_view rest = text.view();
    const bool negative = takeSign(rest);
    const std::wstring_view integerDigits = takeDigits(rest);
    const bool hasPoint = !rest.empty() && rest.front() == L'.';
    if (hasPoint) rest.remove_prefix(1);
    const std::wstring_view fractionDigits = hasPoint ? takeDigits(rest) : std::wstring_view();
    if (!rest.empty() || (integerDigits.empty() && fractionDigits.empty()))
        throw CError("Invalid number: '" + text + "'.");

    const std::string number = String(integerDigits).toUTF8() + "." + String(fractionDigits).toUTF8();
    double value = 0;
    const std::errc error = std::from_chars(number.data(), number.data() + number.size(), value).ec;
    if (error == std::errc::result_out_of_range) {
        const bool isTooLarge = integerDigits.find_first_not_of(L'0') != std::wstring_view::npos;
        if (isTooLarge) throw CError("Invalid number: '" + text + "'.");
        value = 0;
    }
    return negative ? -value : value;
}

String hexEncode(const void* data, std::size_t size) {
    static constexpr wchar_t digits[] = L"0123456789abcdef";
    const auto* const bytes = static_cast<const unsigned char*>(data);
    String text;
    text.reserve(size * 2);
    for (std::size_t i = 0; i < size; ++i) {
        text += digits[bytes[i] >> 4];
        text += digits[bytes[i] & 0xF];
    }
    return text;
}

} // namespace kel
