/// @file kel/Number.h
/// Numbers and bytes as text.
#pragma once

#include "kel/Export.h"
#include "kel/Int64.h"
#include "kel/String.h"

#include <string_view>

namespace kel {

/// @{
/// Reads a decimal integer: an optional "+" or "-" and at least one digit, nothing else.
/// @param allowWhiteSpace whether white space may stand around it.
/// @throws CError "Invalid integer: 'TEXT'." for anything else, the empty text included, and for values
/// outside the 64-bit range.
[[nodiscard]] KEL_API int64 parseInt64(const String& text, bool allowWhiteSpace = false);
[[nodiscard]] KEL_API int64 parseInt64(std::wstring_view text, bool allowWhiteSpace = false);
/// @}

/// Reads a decimal fraction: an optional sign, digits, and optionally a point and digits ("1", "1.5", ".5",
/// "1."), at least one digit in all; no exponent, and the point does not depend on the locale. The result is
/// the nearest double, which is zero for what is too small.
/// @throws CError "Invalid number: 'TEXT'." for anything else, and for values above the greatest double.
[[nodiscard]] KEL_API double parseSimpleDouble(const String& text);

/// Two lower-case hexadecimal digits for each byte.
[[nodiscard]] KEL_API String hexEncode(const void* data, std::size_t size);

/// The value of a hexadecimal digit of either case, or -1 for any other character.
[[nodiscard]] constexpr int hexDecodeCharLax(wchar_t c) noexcept {
    if (c >= L'0' && c <= L'9') return c - L'0';
    if (c >= L'a' && c <= L'f') return c - L'a' + 10;
    if (c >= L'A' && c <= L'F') return c - L'A' + 10;
    return -1;
}

} // namespace kel
