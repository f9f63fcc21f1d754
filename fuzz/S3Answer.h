/// @file S3Answer.h
/// What the fuzz targets for S3's XML answers share.
#pragma once

#include "fuzz/Fuzz.h"

#include <kel/Buffer.h>
#include <kel/Error.h>
#include <kel/Props.h>
#include <kel/String.h>

#include <cstddef>
#include <cstdint>
#include <optional>

namespace fuzz {

/// The answer of this type in the bytes, or nothing when the error thrown is a plain one that `isDocumented`
/// knows by its message.
template <class Answer, class IsDocumented>
std::optional<Answer> parseS3Answer(const std::uint8_t* data, std::size_t size, IsDocumented isDocumented) {
    try {
        return Answer(reinterpret_cast<const char*>(data), static_cast<int>(size));
    } catch (const kel::CError& error) {
        check(error.getCodeDomain().isEmpty() && error.getCode() == -1 && error.getParams().isEmpty() &&
                  !error.getCause(),
              "errors are plain ones");
        check(isDocumented(error), "only the documented errors are thrown");
        return {};
    }
}

/// Text as it may stand in an element.
inline kel::String toXMLText(const kel::String& text) {
    return text.replaceAll("&", "&amp;")
        .replaceAll("<", "&lt;")
        .replaceAll(">", "&gt;")
        .replaceAll("\r", "&#13;");
}

/// Whether a text can be written to XML 1.0 and be read again.
inline bool isXMLText(const kel::String& text) {
    for (const wchar_t c : text.view())
        if ((c < L' ' && c != L'\t' && c != L'\n' && c != L'\r') || c == 0xFFFE || c == 0xFFFF) return false;
    return kel::String::fromUTF8(text.toUTF8()) == text;
}

} // namespace fuzz
