/// @file kel/URI.h
/// Percent-encoding as in RFC 3986 §2.1.
#pragma once

#include "kel/Export.h"
#include "kel/String.h"

namespace kel {

/// Functions on addresses.
class KEL_API CURI {
public:
    /// Replaces every byte of the text's UTF-8 form that is not unreserved (letters, digits, "-", ".", "_",
    /// "~") by "%" and two hexadecimal digits.
    /// @param lowerCaseHex whether the digits above 9 are "a" to "f"; RFC 3986 recommends "A" to "F".
    /// @param keep further ASCII characters that stay as they are; others in it are ignored.
    [[nodiscard]] static String escape(const String& text, bool lowerCaseHex = false,
                                       const String& keep = String());
};

} // namespace kel
