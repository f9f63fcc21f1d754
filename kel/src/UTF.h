/// @file UTF.h
/// The Unicode encoding forms: UTF-8 bytes, and units of 16 or 32 bits. The functions for wide text take the
/// type of their units, so that both widths of wchar_t are compiled and tested on every platform.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>

namespace kel::utf {

inline constexpr char32_t replacementCharacter = 0xFFFD;
inline constexpr char32_t lastCodePoint = 0x10FFFF;
/// Stands for bytes that are no well-formed UTF-8; never a code point.
inline constexpr char32_t illFormed = 0xFFFFFFFF;

[[nodiscard]] constexpr bool isSurrogate(char32_t c) noexcept { return c >= 0xD800 && c <= 0xDFFF; }

[[nodiscard]] constexpr char32_t replaceInvalid(char32_t c) noexcept {
    return c > lastCodePoint || isSurrogate(c) ? replacementCharacter : c;
}

/// Reads one code point at `at`, which must lie before `end`, and moves `at` behind it. For ill-formed bytes
/// the result is `illFormed`, and `at` moves behind the longest start of a well-formed sequence, at least one
/// byte.
[[nodiscard]] inline char32_t decodeUTF8(const unsigned char*& at, const unsigned char* end) noexcept {
    const unsigned char lead = *at++;
    if (lead < 0x80) return lead;
    if (lead < 0xC2 || lead > 0xF4) return illFormed;
    const int continuations = lead < 0xE0 ? 1 : lead < 0xF0 ? 2 : 3;
    char32_t codePoint = lead & (0x3FU >> continuations);
    // The second byte alone decides about overlong forms, surrogates and values above U+10FFFF.
    unsigned char low = lead == 0xE0 ? 0xA0 : lead == 0xF0 ? 0x90 : 0x80;
    unsigned char high = lead == 0xED ? 0x9F : lead == 0xF4 ? 0x8F : 0xBF;
    for (int i = 0; i < continuations; ++i) {
        if (at == end || *at < low || *at > high) return illFormed;
        codePoint = codePoint << 6 | (*at++ & 0x3FU);
        low = 0x80;
        high = 0xBF;
    }
    return codePoint;
}

/// As many units are looked at together where a text is likely to be ASCII.
inline constexpr std::ptrdiff_t blockLength = 8;

[[nodiscard]] inline bool isASCIIBlock(const unsigned char* at) noexcept {
    std::uint64_t block;
    std::memcpy(&block, at, sizeof block);
    return (block & 0x8080808080808080U) == 0;
}

template <class Unit>
[[nodiscard]] bool isASCIIBlock(const Unit* at) noexcept {
    char32_t allBits = 0;
    for (std::ptrdiff_t i = 0; i < blockLength; ++i) allBits |= static_cast<char32_t>(at[i]);
    return allBits < 0x80;
}

/// Moves `at` behind the ASCII bytes that it points to, and writes them as units.
template <class Unit>
[[nodiscard]] Unit* widenASCII(const unsigned char*& at, const unsigned char* end, Unit* out) noexcept {
    for (; end - at >= blockLength && isASCIIBlock(at); at += blockLength, out += blockLength) {
        // In a copy of its own the compiler knows that the bytes are no part of what is written.
        unsigned char block[blockLength];
        std::memcpy(block, at, sizeof block);
        for (std::ptrdiff_t i = 0; i < blockLength; ++i) out[i] = static_cast<Unit>(block[i]);
    }
    while (at != end && *at < 0x80) *out++ = static_cast<Unit>(*at++);
    return out;
}

[[nodiscard]] inline bool isValidUTF8(const unsigned char* at, const unsigned char* end) noexcept {
    while (at != end) {
        if (*at < 0x80) {
            while (end - at >= blockLength && isASCIIBlock(at)) at += blockLength;
            while (at != end && *at < 0x80) ++at;
        } else if (decodeUTF8(at, end) == illFormed) {
            return false;
        }
    }
    return true;
}

/// Writes a code point, one unit or a surrogate pair, and returns the position behind it.
template <class Unit>
[[nodiscard]] Unit* writeUnits(char32_t codePoint, Unit* out) noexcept {
    static_assert(sizeof(Unit) == 2 || sizeof(Unit) == 4);
    if constexpr (sizeof(Unit) == 2) {
        if (codePoint > 0xFFFF) {
            *out++ = static_cast<Unit>(0xD7C0 + (codePoint >> 10));
            codePoint = 0xDC00 | (codePoint & 0x3FF);
        }
    }
    *out++ = static_cast<Unit>(codePoint);
    return out;
}

/// Reads one code point at `at`, which must lie before `end`, and moves `at` behind it. What is no code point
/// gives U+FFFD.
template <class Unit>
[[nodiscard]] char32_t readUnits(const Unit*& at, const Unit* end) noexcept {
    static_assert(sizeof(Unit) == 2 || sizeof(Unit) == 4);
    if constexpr (sizeof(Unit) == 2) {
        const char32_t first = static_cast<char16_t>(*at++);
        if (first >= 0xD800 && first <= 0xDBFF && at != end) {
            const char32_t second = static_cast<char16_t>(*at);
            if (second >= 0xDC00 && second <= 0xDFFF) {
                ++at;
                return 0x10000 + ((first & 0x3FF) << 10 | (second & 0x3FF));
            }
        }
        return replaceInvalid(first);
    } else {
        return replaceInvalid(static_cast<char32_t>(*at++));
    }
}

enum class OnIllFormed { Replace, Stop };

/// Decodes as much of the bytes from `at` on as fits into the units from `out` to `outEnd`, where there must
/// be room for at least two, and moves `at` behind what was read. Returns the position behind the last unit
/// written. With OnIllFormed::Stop an ill-formed sequence makes it null.
template <class Unit>
[[nodiscard]] Unit* decodeSome(const unsigned char*& at, const unsigned char* end, Unit* out,
                               const Unit* outEnd, OnIllFormed onIllFormed) noexcept {
    while (at != end && outEnd - out >= 2) {
        if (*at < 0x80) {
            const std::ptrdiff_t room = outEnd - out;
            out = widenASCII(at, end - at > room ? at + room : end, out);
        } else {
            const char32_t codePoint = decodeUTF8(at, end);
            if (codePoint == illFormed && onIllFormed == OnIllFormed::Stop) return nullptr;
            out = writeUnits(codePoint == illFormed ? replacementCharacter : codePoint, out);
        }
    }
    return out;
}

[[nodiscard]] constexpr std::size_t lengthInUTF8(char32_t codePoint) noexcept {
    return codePoint < 0x80 ? 1 : codePoint < 0x800 ? 2 : codePoint < 0x10000 ? 3 : 4;
}

/// Number of bytes that writeUTF8 needs.
template <class Unit>
[[nodiscard]] std::size_t measureUTF8(const Unit* at, const Unit* end) noexcept {
    std::size_t length = 0;
    while (at != end) {
        for (; end - at >= blockLength && isASCIIBlock(at); at += blockLength) length += blockLength;
        if (at != end) length += lengthInUTF8(readUnits(at, end));
    }
    return length;
}

/// Writes a code point and returns the position behind it.
[[nodiscard]] inline char* writeUTF8(char32_t codePoint, char* out) noexcept {
    const auto put = [&out](char32_t byte) { *out++ = static_cast<char>(static_cast<unsigned char>(byte)); };
    const std::size_t length = lengthInUTF8(codePoint);
    if (length == 1) {
        put(codePoint);
        return out;
    }
    if (length == 2) put(0xC0 | codePoint >> 6);
    if (length == 3) put(0xE0 | codePoint >> 12);
    if (length == 4) put(0xF0 | codePoint >> 18);
    if (length == 4) put(0x80 | (codePoint >> 12 & 0x3F));
    if (length >= 3) put(0x80 | (codePoint >> 6 & 0x3F));
    put(0x80 | (codePoint & 0x3F));
    return out;
}

/// Writes the whole text and returns the position behind it.
template <class Unit>
[[nodiscard]] char* writeUTF8(const Unit* at, const Unit* end, char* out) noexcept {
    while (at != end) {
        for (; end - at >= blockLength && isASCIIBlock(at); at += blockLength, out += blockLength)
            for (std::ptrdiff_t i = 0; i < blockLength; ++i) out[i] = static_cast<char>(at[i]);
        if (at != end) out = writeUTF8(readUnits(at, end), out);
    }
    return out;
}

} // namespace kel::utf
