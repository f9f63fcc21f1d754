#include "vantra/URLEncoding.h"

#include <kel/Number.h>
#include <kel/URI.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <string>
#include <string_view>

namespace vantra {

using kel::CProps;
using kel::String;
using kel::TMap;

namespace {

/// Texts are converted in a buffer of this size on the stack; for those that fit into it, the result's own
/// memory is the only allocation.
constexpr std::size_t chunkLength = 768;
using Chunk = std::array<wchar_t, chunkLength>;

std::wstring_view viewOf(const Chunk& chunk, const wchar_t* end) {
    return {chunk.data(), static_cast<std::size_t>(end - chunk.data())};
}

/// A unit of wide text or a byte as a number.
constexpr char32_t valueOf(wchar_t unit) noexcept { return static_cast<char32_t>(unit); }
constexpr char32_t valueOf(char byte) noexcept { return static_cast<unsigned char>(byte); }

constexpr std::size_t escapeLength = 3; // "%2f"

constexpr std::array<bool, 256> unreservedBytes = [] {
    std::array<bool, 256> unreserved{};
    for (const char c : std::string_view("-.0123456789_~"
                                         "ABCDEFGHIJKLMNOPQRSTUVWXYZ"
                                         "abcdefghijklmnopqrstuvwxyz"))
        unreserved[valueOf(c)] = true;
    return unreserved;
}();

wchar_t* writeEscape(char32_t byte, wchar_t* out) noexcept {
    static constexpr wchar_t digits[] = L"0123456789abcdef";
    *out++ = L'%';
    *out++ = digits[byte >> 4];
    *out++ = digits[byte & 0xF];
    return out;
}

template <class Unit>
std::size_t measureEscaped(std::basic_string_view<Unit> text) noexcept {
    std::size_t length = 0;
    for (const Unit unit : text) length += unreservedBytes[valueOf(unit) & 0xFF] ? 1 : escapeLength;
    return length;
}

/// Appends the escaped form of all units up to the first above `last`, and returns how many they are.
template <class Unit>
std::size_t appendEscapedUnits(String& target, std::basic_string_view<Unit> text, bool spaceAsPlus,
                               char32_t last) {
    constexpr std::size_t unitsInAChunk = chunkLength / escapeLength;
    if (text.size() > unitsInAChunk) target.reserve(target.length() + measureEscaped(text));
    Chunk chunk;
    const Unit* at = text.data();
    const Unit* const end = at + text.size();
    while (at != end && valueOf(*at) <= last) {
        const Unit* const chunkEnd = at + std::min(unitsInAChunk, static_cast<std::size_t>(end - at));
        wchar_t* out = chunk.data();
        for (; at != chunkEnd && valueOf(*at) <= last; ++at) {
            const char32_t byte = valueOf(*at);
            if (unreservedBytes[byte])
                *out++ = static_cast<wchar_t>(byte);
            else if (byte == U' ' && spaceAsPlus)
                *out++ = L'+';
            else
                out = writeEscape(byte, out);
        }
        target.append(viewOf(chunk, out));
    }
    return static_cast<std::size_t>(at - text.data());
}

void appendEscaped(String& target, const String& text, bool spaceAsPlus) {
    const std::size_t asciiCount = appendEscapedUnits(target, text.view(), spaceAsPlus, 0x7F);
    if (asciiCount == text.length()) return;
    const std::string utf8 = text.toUTF8();
    appendEscapedUnits(target, std::string_view(utf8).substr(asciiCount), spaceAsPlus, 0xFF);
}

constexpr std::array<signed char, 256> hexDigitValues = [] {
    std::array<signed char, 256> values{};
    for (std::size_t i = 0; i < values.size(); ++i)
        values[i] = static_cast<signed char>(kel::hexDecodeCharLax(static_cast<wchar_t>(i)));
    return values;
}();

/// The value of a hexadecimal digit, or a negative number.
template <class Unit>
int hexDigitValue(Unit unit) noexcept {
    return valueOf(unit) < hexDigitValues.size() ? hexDigitValues[valueOf(unit)] : -1;
}

/// Whether a unit is ASCII and stands for itself. "%" and "+" lie below these, with characters that are rare
/// in escaped text, so that one comparison is enough for most units.
constexpr char32_t firstPlain = U',';
constexpr bool isPlain(char32_t unit) noexcept { return unit - firstPlain <= 0x7F - firstPlain; }

/// Units that are looked at together, in a way in which a compiler makes vector instructions of it.
constexpr std::ptrdiff_t blockLength = 8;

template <class Unit>
bool isPlainBlock(const Unit* at) noexcept {
    char32_t bits = 0;
    for (std::ptrdiff_t i = 0; i < blockLength; ++i) bits |= valueOf(at[i]) | (valueOf(at[i]) - firstPlain);
    return bits <= 0x7F;
}

/// Reads one unit or escape at `at` and moves `at` behind it. The result is a byte, or the unit where that is
/// more.
template <class Unit>
char32_t readUnescaped(const Unit*& at, const Unit* end, bool plusAsSpace) noexcept {
    const char32_t unit = valueOf(*at++);
    if (unit == U'%' && end - at >= 2) {
        const int high = hexDigitValue(at[0]);
        const int low = hexDigitValue(at[1]);
        if ((high | low) >= 0) {
            at += 2;
            return static_cast<char32_t>(high * 16 + low);
        }
    }
    return unit == U'+' && plusAsSpace ? U' ' : unit;
}

/// Unescapes from `at` on as long as there is room for the result and it is no more than `last`, and moves
/// `at` behind what was read. Returns the position behind the last unit written.
template <class In, class Out>
Out* unescapeSome(const In*& at, const In* end, Out* out, const Out* outEnd, bool plusAsSpace,
                  char32_t last) noexcept {
    while (at != end && out != outEnd) {
        // What is read gives no more units than it has.
        const In* const safeEnd = at + std::min(end - at, outEnd - out);
        for (; safeEnd - at >= blockLength && isPlainBlock(at); at += blockLength, out += blockLength)
            for (std::ptrdiff_t i = 0; i < blockLength; ++i) out[i] = static_cast<Out>(at[i]);
        while (at < safeEnd) {
            const char32_t unit = valueOf(*at);
            if (isPlain(unit)) {
                *out++ = static_cast<Out>(unit);
                ++at;
                continue;
            }
            const In* const start = at;
            const char32_t unescaped = readUnescaped(at, end, plusAsSpace);
            if (unescaped > last) {
                at = start;
                return out;
            }
            *out++ = static_cast<Out>(unescaped);
        }
    }
    return out;
}

/// @param text bytes in units of any width.
template <class Unit>
String unescapeBytes(std::basic_string_view<Unit> text, bool plusAsSpace) {
    std::array<char, chunkLength> onStack;
    std::string onHeap;
    if (text.size() > onStack.size()) onHeap.resize(text.size());
    char* const begin = onHeap.empty() ? onStack.data() : onHeap.data();
    const Unit* at = text.data();
    const char* const end = unescapeSome(at, at + text.size(), begin, begin + text.size(), plusAsSpace, 0xFF);
    return String::fromUTF8Lax({begin, static_cast<std::size_t>(end - begin)});
}

/// False, with part of the result in `unescaped`, if the text or what it stands for is not all ASCII.
bool tryUnescapeASCII(std::wstring_view text, bool plusAsSpace, String& unescaped) {
    if (text.size() > chunkLength) unescaped.reserve(text.size());
    Chunk chunk;
    const wchar_t* at = text.data();
    const wchar_t* const end = at + text.size();
    while (at != end) {
        const wchar_t* const chunkEnd =
            unescapeSome(at, end, chunk.data(), chunk.data() + chunk.size(), plusAsSpace, 0x7F);
        if (at != end && chunkEnd != chunk.data() + chunk.size()) return false;
        unescaped.append(viewOf(chunk, chunkEnd));
    }
    return true;
}

bool isASCII(std::wstring_view text) noexcept {
    char32_t bits = 0;
    for (; text.size() >= blockLength; text.remove_prefix(blockLength))
        for (std::size_t i = 0; i < blockLength; ++i) bits |= valueOf(text[i]);
    for (const wchar_t unit : text) bits |= valueOf(unit);
    return bits <= 0x7F;
}

String unescape(std::wstring_view text, bool plusAsSpace) {
    String unescaped;
    if (tryUnescapeASCII(text, plusAsSpace, unescaped)) return unescaped;
    return isASCII(text) ? unescapeBytes(text, plusAsSpace)
                         : unescapeBytes(std::string_view(String(text).toUTF8()), plusAsSpace);
}

} // namespace

String urlEscape(const String& text, bool spaceAsPlus) {
    String escaped;
    appendEscaped(escaped, text, spaceAsPlus);
    return escaped;
}

String urlUnescape(const String& text, bool plusAsSpace) { return unescape(text.view(), plusAsSpace); }

String encodeURLParams(const TMap<String, String>& params) {
    String query;
    for (const auto& [key, value] : params) {
        if (!query.isEmpty()) query += L'&';
        appendEscaped(query, key, true);
        query += L'=';
        appendEscaped(query, value, true);
    }
    return query;
}

void decodeURLParams(const String& query, TMap<String, String>& params) {
    // NOLINTNEXTLINE(performance-unnecessary-copy-initialization): `query` may be a value of `params`
    const String copy = query;
    std::wstring_view rest = copy.view();
    while (!rest.empty()) {
        const std::size_t ampersand = rest.find(L'&');
        const std::wstring_view piece = rest.substr(0, ampersand);
        rest.remove_prefix(ampersand == std::wstring_view::npos ? rest.size() : ampersand + 1);
        const std::size_t equals = piece.find(L'=');
        const std::wstring_view value =
            equals == std::wstring_view::npos ? std::wstring_view() : piece.substr(equals + 1);
        params[unescape(piece.substr(0, equals), true)] = unescape(value, true);
    }
}

String formURLEncode(const String& text, bool flag) {
    return kel::CURI::escape(text, flag).replaceAll("%20", "+");
}

String formURLEncode(const std::map<String, String>& params, bool flag) {
    String form;
    for (const auto& [name, value] : params) {
        if (!form.isEmpty()) form += L'&';
        form += formURLEncode(name, flag) + "=" + formURLEncode(value, flag);
    }
    return form;
}

String formURLEncode(const CProps& params, bool flag) { return formURLEncode(params.getMap(), flag); }

} // namespace vantra
