/// @file Fuzz.h
/// What the fuzz targets share.
///
///     extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
///         const String text = fuzz::toText(data, size);
///         fuzz::check(urlUnescape(urlEscape(text, true), true) == text, "unescaping undoes escaping");
///         return 0;
///     }
#pragma once

#include <kel/Error.h>
#include <kel/String.h>

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string_view>

/// Runs a target on one input. The result is 0.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

namespace fuzz {

inline std::string_view toBytes(const std::uint8_t* data, std::size_t size) {
    return {reinterpret_cast<const char*>(data), size};
}

/// Any bytes as the text that the library makes of them when they come from a server.
inline kel::String toText(std::string_view bytes) { return kel::String::fromUTF8Lax(bytes); }
inline kel::String toText(const std::uint8_t* data, std::size_t size) { return toText(toBytes(data, size)); }

/// Takes the bytes before the next line feed, and it, off the front.
inline std::string_view takeLine(std::string_view& bytes) {
    const std::size_t end = bytes.find('\n');
    const std::string_view line = bytes.substr(0, end);
    bytes.remove_prefix(end == std::string_view::npos ? bytes.size() : end + 1);
    return line;
}

/// Ends the process, for the fuzzer to notice, if what always holds does not.
inline void check(bool holds, const char* what) {
    if (holds) return;
    std::fprintf(stderr, "Does not hold: %s\n", what);
    std::abort();
}

inline bool isLower(const kel::String& text) { return text == text.toLower(); }
inline bool isTrimmed(const kel::String& text) { return text == text.trim(); }

/// Whether an error is the base library's about a text that is no integer.
inline bool isIntegerError(const kel::CError& error) {
    return error.getMessage().startsWith(L"Invalid integer: '") && error.getMessage().endsWith(L"'.");
}

} // namespace fuzz
