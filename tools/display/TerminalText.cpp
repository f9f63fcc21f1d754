#include "display/TerminalText.h"

#include "arguments/HiddenPassword.h"
#include "display/LiveLines.h"

#include <string_view>

namespace vantra::tool {

using kel::String;

namespace {

constexpr wchar_t replacementCharacter = L'\xFFFD';

/// Unlike white space in general these move the cursor, or start a line for some terminals (NEL, LS, PS).
bool isLayout(wchar_t c) {
    return (c >= L'\t' && c <= L'\r') || c == L'\x85' || c == L'\x2028' || c == L'\x2029';
}

bool isControl(wchar_t c) { return c < L' ' || (c >= L'\x7F' && c <= L'\x9F'); }

/// Marks, embeddings, overrides and isolates of the bidirectional algorithm: text could show up reversed.
bool isDirectional(wchar_t c) {
    return c == L'\x61C' || c == L'\x200E' || c == L'\x200F' || (c >= L'\x202A' && c <= L'\x202E') ||
           (c >= L'\x2066' && c <= L'\x2069');
}

/// How long the white space at the start is.
std::size_t getBlankLength(std::wstring_view text) {
    std::size_t length = 0;
    while (length < text.size() && (text[length] == L' ' || isLayout(text[length]))) ++length;
    return length;
}

/// A message begins with what it is about and ends with the reason, whatever a user or a server put between.
String cutMiddle(const String& text) {
    constexpr std::size_t maxLength = 4000;
    constexpr std::size_t keptAtEnd = 1500;
    if (text.length() <= maxLength) return text;
    return text.substr(0, maxLength - keptAtEnd) + "..." + text.substr(text.length() - keptAtEnd);
}

} // namespace

std::string toTerminalLine(const String& text) {
    String line;
    std::wstring_view rest = kel::trimView(text.view());
    while (!rest.empty()) {
        const std::wstring_view blanks = rest.substr(0, getBlankLength(rest));
        if (blanks.empty()) {
            const wchar_t c = rest.front();
            line += isControl(c) || isDirectional(c) ? replacementCharacter : c;
            rest.remove_prefix(1);
            continue;
        }
        const bool onlyBlanks = blanks.find_first_not_of(L' ') == std::wstring_view::npos;
        line.append(onlyBlanks ? blanks : std::wstring_view(L" "));
        rest.remove_prefix(blanks.size());
    }
    return line.toUTF8();
}

String shorten(const String& text, std::size_t maxLength) {
    return text.length() <= maxLength ? text : text.substr(0, maxLength) + "...";
}

void writeMessage(const String& text) noexcept {
    try {
        writeAboveLiveLines("vantra: " + toTerminalLine(cutMiddle(hidePasswords(text))) + "\n");
    } catch (...) {
        writeAboveLiveLines("vantra: out of memory\n");
    }
}

} // namespace vantra::tool
