/// @file kel/String.h
/// Text. Inside the program text is a String; at every outside edge it is UTF-8.
///
///     String host = "Example.ORG";
///     String url = "https://" + host.toLower() + "/" + String::fromInt(42);
///     std::string bytes = url.toUTF8();
#pragma once

#include "kel/Export.h"
#include "kel/Int64.h"

#include <compare>
#include <cstddef>
#include <functional>
#include <ostream>
#include <string>
#include <string_view>

#include <wx/string.h>

namespace kel {

/// A wide-character text of any length; NUL characters may be part of it. One element is a code point where
/// wchar_t has 32 bits and a UTF-16 code unit where it has 16; toUTF32() gives code points everywhere.
/// Comparison is ordinal, element by element. White space means blank, tab, CR, LF, VT and FF.
///
/// Thread safety: as for std::string.
class KEL_API String {
public:
    /// "Not found", and "up to the end".
    static constexpr std::size_t npos = static_cast<std::size_t>(-1);

    String() = default;
    /// From UTF-8 with a terminating NUL; null gives the empty text.
    /// @throws CError if the bytes are not valid UTF-8.
    String(const char* utf8);
    /// From `length` bytes of UTF-8. @throws CError if they are not valid UTF-8.
    String(const char* utf8, std::size_t length);
    /// With a terminating NUL; null gives the empty text.
    String(const wchar_t* text);
    /// @{
    /// From so many elements, or all of a text.
    String(const wchar_t* text, std::size_t length);
    String(const wxString& text);
    /// @}
    /// @{
    /// The same.
    explicit String(std::wstring_view text);
    explicit String(const std::wstring& text) : String(std::wstring_view(text)) {}
    /// @}
    /// @{
    /// From UTF-8. @throws CError if it is not valid
    explicit String(std::string_view utf8) : String(utf8.data(), utf8.size()) {}
    explicit String(const std::string& utf8) : String(std::string_view(utf8)) {}
    /// @}
    String(const String& other) = default;
    /// The source is empty afterwards. (A wxString itself can only be copied or swapped.)
    String(String&& other) noexcept { text_.swap(other.text_); }
    String& operator=(const String& other) = default;
    String& operator=(String&& other) noexcept;
    ~String() = default;

    /// @throws CError "Invalid UTF-8 text." if the bytes are not valid UTF-8 (RFC 3629: no overlong forms, no
    /// surrogates, nothing above U+10FFFF).
    static String fromUTF8(std::string_view bytes);
    /// As fromUTF8, but each ill-formed sequence (the longest start of a well-formed one, else a single byte;
    /// Unicode §3.9) becomes one U+FFFD. Never fails.
    static String fromUTF8Lax(std::string_view bytes);
    /// As fromUTF8, but says false and leaves `text` alone when the bytes are not valid UTF-8. Reuses the
    /// memory of `text`.
    static bool tryFromUTF8(std::string_view bytes, String& text);
    /// Each byte is the character of that code (ISO 8859-1).
    static String fromLatin1(std::string_view bytes);
    /// A surrogate or a value above U+10FFFF becomes U+FFFD.
    static String fromUTF32(std::u32string_view codePoints);
    /// @{
    /// Decimal, with a leading "-" for negative values.
    static String fromInt(int64 value);
    static String fromUInt(uint64 value);
    /// @}

    /// An unpaired surrogate or a value that is no code point becomes U+FFFD.
    [[nodiscard]] std::string toUTF8() const;
    /// Each character above U+00FF becomes one `replacement`.
    [[nodiscard]] std::string toLatin1(char replacement = '?') const;
    /// With the same replacements as toUTF8().
    [[nodiscard]] std::u32string toUTF32() const;
    /// The text itself, as wxWidgets has it; valid as long as this object is.
    [[nodiscard]] const wxString& toWxString() const noexcept { return text_; }
    /// Valid until the text changes.
    [[nodiscard]] std::wstring_view view() const noexcept { return {text_.wx_str(), text_.length()}; }

    /// In elements.
    [[nodiscard]] std::size_t length() const noexcept { return text_.length(); }
    /// Whether the length is 0.
    [[nodiscard]] bool isEmpty() const noexcept { return text_.empty(); }
    /// The element at `index`, which must be less than the length.
    wchar_t operator[](std::size_t index) const { return view()[index]; }
    /// Makes it the empty text.
    void clear() { text_.clear(); }
    /// Makes room for so many elements in all, as a hint.
    void reserve(std::size_t length) { text_.reserve(length); }

    /// @{
    /// First position at or after `from`, or npos.
    [[nodiscard]] std::size_t find(const String& what, std::size_t from = 0) const noexcept;
    [[nodiscard]] std::size_t find(wchar_t what, std::size_t from = 0) const noexcept;
    /// @}

    /// Last position, or npos.
    [[nodiscard]] std::size_t findLast(wchar_t what) const noexcept;
    /// Whether `what` occurs anywhere; the empty text always does.
    [[nodiscard]] bool contains(const String& what) const noexcept { return find(what) != npos; }
    /// @{
    /// Whether the text begins with `prefix`, case included; every text begins with the empty one.
    [[nodiscard]] bool startsWith(std::wstring_view prefix) const noexcept;
    [[nodiscard]] bool startsWith(const String& prefix) const noexcept { return startsWith(prefix.view()); }
    [[nodiscard]] bool startsWith(const wchar_t* prefix) const noexcept {
        return startsWith(std::wstring_view(prefix));
        /// @}
    }
    /// @{
    /// Whether the text ends with `suffix`, case included; every text ends with the empty one.
    [[nodiscard]] bool endsWith(std::wstring_view suffix) const noexcept;
    [[nodiscard]] bool endsWith(const String& suffix) const noexcept { return endsWith(suffix.view()); }
    [[nodiscard]] bool endsWith(const wchar_t* suffix) const noexcept {
        return endsWith(std::wstring_view(suffix));
        /// @}
    }
    /// Equality without regard to the case of ASCII letters.
    [[nodiscard]] bool equalsNoCase(const String& other) const noexcept;

    /// At most `count` elements from `position`; empty when `position` lies at or behind the end.
    [[nodiscard]] String substr(std::size_t position, std::size_t count = npos) const;
    /// @{
    /// Without the white space at both ends, at the beginning, or at the end.
    [[nodiscard]] String trim() const;
    [[nodiscard]] String trimLeft() const;
    [[nodiscard]] String trimRight() const;
    /// @}

    /// @{
    /// With the ASCII letters in lower or upper case; every other character stays, so the result does not
    /// depend on a locale.
    [[nodiscard]] String toLower() const;
    [[nodiscard]] String toUpper() const;
    /// @}

    /// Every occurrence of `what`, from left to right, becomes `with`; an empty `what` changes nothing.
    [[nodiscard]] String replaceAll(const String& what, const String& with) const;

    /// @{
    /// Appends a text, or one element.
    String& operator+=(const String& tail);
    String& operator+=(wchar_t tail);
    String& append(std::wstring_view tail);
    /// @}

    friend String operator+(const String& left, const String& right) { return String(left) += right; }
    friend String operator+(String&& left, const String& right) { return std::move(left += right); }
    friend bool operator==(const String& left, const String& right) noexcept {
        return left.view() == right.view();
    }
    friend std::strong_ordering operator<=>(const String& left, const String& right) noexcept {
        return left.view() <=> right.view();
    }
    /// Writes UTF-8.
    friend KEL_API std::ostream& operator<<(std::ostream& stream, const String& text);

private:
    wxString text_;
};

/// @{
/// The view without the white space at both ends, at the beginning, or at the end.
[[nodiscard]] KEL_API std::wstring_view trimView(std::wstring_view text) noexcept;
[[nodiscard]] KEL_API std::wstring_view trimLeftView(std::wstring_view text) noexcept;
[[nodiscard]] KEL_API std::wstring_view trimRightView(std::wstring_view text) noexcept;
/// @}

/// Blank, tab, CR, LF, VT or FF.
[[nodiscard]] constexpr bool isWhiteSpace(wchar_t c) noexcept {
    return c == L' ' || (c >= L'\t' && c <= L'\r');
}
/// Lower-cases an ASCII letter; other characters stay.
[[nodiscard]] constexpr wchar_t toLowerASCII(wchar_t c) noexcept {
    return c >= L'A' && c <= L'Z' ? static_cast<wchar_t>(c + (L'a' - L'A')) : c;
}

} // namespace kel

template <>
struct std::hash<kel::String> {
    std::size_t operator()(const kel::String& text) const noexcept {
        return std::hash<std::wstring_view>()(text.view());
    }
};
