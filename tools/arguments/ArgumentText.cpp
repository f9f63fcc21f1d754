#include "arguments/ArgumentText.h"

#include "Errors.h"

#include <algorithm>

namespace vantra::tool {

using kel::String;

String toArgumentText(const std::string& name, const std::string& argument) {
    String text;
    if (!String::tryFromUTF8(argument, text)) throw CUsageError(String(name) + ": is not valid UTF-8");
    return text;
}

bool hasControlCharacters(const String& text) {
    const std::wstring_view characters = text.view();
    return std::any_of(characters.begin(), characters.end(),
                       [](wchar_t c) { return c < L' ' || (c >= L'\x7F' && c <= L'\x9F'); });
}

void refuseControlCharacters(const std::string& name, const String& text) {
    if (hasControlCharacters(text))
        throw CUsageError(String(name) + ": must not contain line breaks or other control characters");
}

} // namespace vantra::tool
