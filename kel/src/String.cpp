#include "kel/String.h"

#include "kel/Error.h"
#include "UTF.h"

#include <algorithm>
#include <array>
#include <charconv>

namespace kel {

namespace {

// Texts up to this many bytes, which is nearly every header line, are decoded in one pass on the stack.
constexpr std::size_t chunkLength = 512;

const unsigned char* asBytes(std::string_view bytes) noexcept {
    return reinterpret_cast<const unsigned char*>(bytes.data());
}

/// Puts the decoded bytes in place of `text`.
void decodeInChunks(std::string_view bytes, wxString& text) {
    const unsigned char* at = asBytes(bytes);
    const unsigned char* const end = at + bytes.size();
    std::array<wchar_t, chunkLength> chunk;
    text.clear();
    while (at != end) {
        const wchar_t* const chunkEnd =
            utf::decodeSome(at, end, chunk.data(), chunk.data() + chunk.size(), utf::OnIllFormed::Replace);
        text.append(chunk.data(), static_cast<std::size_t>(chunkEnd - chunk.data()));
    }
}

template <class Integer>
String integerToString(Integer value) {
    std::array<char, 24> digits;
    const char* const end = std::to_chars(digits.data(), digits.data() + digits.size(), value).ptr;
    return String::fromLatin1({digits.data(), static_cast<std::size_t>(end - digits.data())});
}

template <class Convert>
String convertEach(std::wstring_view text, Convert convert) {
    String converted;
    converted.reserve(text.size());
    std::array<wchar_t, chunkLength> chunk;
    while (!text.empty()) {
        const std::size_t count = std::min(text.size(), chunk.size());
        std::transform(text.data(), text.data() + count, chunk.data(), convert);
        converted.append({chunk.data(), count});
        text.remove_prefix(count);
    }
    return converted;
}

constexpr wchar_t toUpperASCII(wchar_t c) noexcept {
    return c >= L'a' && c <= L'z' ? static_cast<wchar_t>(c - (L'a' - L'A')) : c;
}

} // namespace

// A DLL exports a constant of a class only where it is defined.
constexpr std::size_t String::npos; // NOLINT(readability-redundant-declaration)

String::String(const char* utf8) : String(utf8, utf8 ? std::char_traits<char>::length(utf8) : 0) {}

String::String(const char* utf8, std::size_t length) {
    if (!tryFromUTF8({utf8, length}, *this)) throw CError("Invalid UTF-8 text.");
}

String::String(const wchar_t* text) : String(text, text ? std::char_traits<wchar_t>::length(text) : 0) {}

String::String(const wchar_t* text, std::size_t length) {
    if (length > 0) text_.assign(text, length);
}

String::String(const wxString& text) : text_(text) {}

String::String(std::wstring_view text) : String(text.data(), text.size()) {}

String& String::operator=(String&& other) noexcept {
    if (this != &other) {
        text_.swap(other.text_);
        other.text_.clear();
    }
    return *this;
}

String String::fromUTF8(std::string_view bytes) { return String(bytes); }

String String::fromUTF8Lax(std::string_view bytes) {
    String text;
    text.text_.reserve(bytes.size());
    decodeInChunks(bytes, text.text_);
    return text;
}

bool String::tryFromUTF8(std::string_view bytes, String& text) {
    const unsigned char* at = asBytes(bytes);
    const unsigned char* const end = at + bytes.size();
    if (bytes.size() > chunkLength) {
        if (!utf::isValidUTF8(at, end)) return false;
        text.text_.clear();
        text.text_.reserve(bytes.size());
        decodeInChunks(bytes, text.text_);
        return true;
    }
    // decodeSome wants room for a surrogate pair before each code point.
    std::array<wchar_t, chunkLength + 1> chunk;
    const wchar_t* const chunkEnd =
        utf::decodeSome(at, end, chunk.data(), chunk.data() + chunk.size(), utf::OnIllFormed::Stop);
    if (!chunkEnd) return false;
    text.text_.assign(chunk.data(), static_cast<std::size_t>(chunkEnd - chunk.data()));
    return true;
}

String String::fromLatin1(std::string_view bytes) {
    String text;
    text.text_.reserve(bytes.size());
    std::array<wchar_t, chunkLength> chunk;
    while (!bytes.empty()) {
        const std::size_t count = std::min(bytes.size(), chunk.size());
        for (std::size_t i = 0; i < count; ++i) chunk[i] = static_cast<unsigned char>(bytes[i]);
        text.text_.append(chunk.data(), count);
        bytes.remove_prefix(count);
    }
    return text;
}

String String::fromUTF32(std::u32string_view codePoints) {
    String text;
    text.text_.reserve(codePoints.size());
    std::array<wchar_t, 2> units;
    for (const char32_t codePoint : codePoints) {
        const wchar_t* const end = utf::writeUnits(utf::replaceInvalid(codePoint), units.data());
        text.text_.append(units.data(), static_cast<std::size_t>(end - units.data()));
    }
    return text;
}

String String::fromInt(int64 value) { return integerToString(value); }

String String::fromUInt(uint64 value) { return integerToString(value); }

std::string String::toUTF8() const {
    const std::wstring_view text = view();
    const wchar_t* const end = text.data() + text.size();
    std::string bytes(utf::measureUTF8(text.data(), end), '\0');
    static_cast<void>(utf::writeUTF8(text.data(), end, bytes.data()));
    return bytes;
}

std::string String::toLatin1(char replacement) const {
    const std::wstring_view text = view();
    const wchar_t* at = text.data();
    const wchar_t* const end = at + text.size();
    std::string bytes;
    bytes.reserve(text.size());
    while (at != end) {
        const char32_t codePoint = utf::readUnits(at, end);
        bytes += codePoint <= 0xFF ? static_cast<char>(static_cast<unsigned char>(codePoint)) : replacement;
    }
    return bytes;
}

std::u32string String::toUTF32() const {
    const std::wstring_view text = view();
    const wchar_t* at = text.data();
    const wchar_t* const end = at + text.size();
    std::u32string codePoints;
    codePoints.reserve(text.size());
    while (at != end) codePoints += utf::readUnits(at, end);
    return codePoints;
}

std::size_t String::find(const String& what, std::size_t from) const noexcept {
    return view().find(what.view(), from);
}

std::size_t String::find(wchar_t what, std::size_t from) const noexcept { return view().find(what, from); }

std::size_t String::findLast(wchar_t what) const noexcept { return view().rfind(what); }

bool String::startsWith(std::wstring_view prefix) const noexcept { return view().starts_with(prefix); }

bool String::endsWith(std::wstring_view suffix) const noexcept { return view().ends_with(suffix); }

bool String::equalsNoCase(const String& other) const noexcept {
    const std::wstring_view left = view();
    const std::wstring_view right = other.view();
    return left.size() == right.size() &&
           std::equal(left.begin(), left.end(), right.begin(),
                      [](wchar_t a, wchar_t b) { return toLowerASCII(a) == toLowerASCII(b); });
}

String String::substr(std::size_t position, std::size_t count) const {
    if (position >= length()) return {};
    return String(view().substr(position, count));
}

String String::trim() const { return String(trimView(view())); }

String String::trimLeft() const { return String(trimLeftView(view())); }

String String::trimRight() const { return String(trimRightView(view())); }

String String::toLower() const { return convertEach(view(), toLowerASCII); }

String String::toUpper() const { return convertEach(view(), toUpperASCII); }

String String::replaceAll(const String& what, const String& with) const {
    if (what.isEmpty()) return *this;
    std::wstring_view rest = view();
    String result;
    for (std::size_t found; (found = rest.find(what.view())) != npos;
         rest.remove_prefix(found + what.length()))
        result.append(rest.substr(0, found)).append(with.view());
    return result.append(rest);
}

String& String::operator+=(const String& tail) { return append(tail.view()); }

String& String::operator+=(wchar_t tail) { return append({&tail, 1}); }

String& String::append(std::wstring_view tail) {
    text_.append(tail.data(), tail.size());
    return *this;
}

std::ostream& operator<<(std::ostream& stream, const String& text) { return stream << text.toUTF8(); }

std::wstring_view trimLeftView(std::wstring_view text) noexcept {
    while (!text.empty() && isWhiteSpace(text.front())) text.remove_prefix(1);
    return text;
}

std::wstring_view trimRightView(std::wstring_view text) noexcept {
    while (!text.empty() && isWhiteSpace(text.back())) text.remove_suffix(1);
    return text;
}

std::wstring_view trimView(std::wstring_view text) noexcept { return trimLeftView(trimRightView(text)); }

} // namespace kel
