#include "arguments/HeaderArgument.h"

#include "arguments/ArgumentText.h"
#include "Errors.h"

#include <algorithm>
#include <string_view>

namespace vantra::tool {

using kel::String;

namespace {

bool isTokenCharacter(wchar_t c) {
    constexpr std::wstring_view marks = L"!#$%&'*+-.^_`|~";
    return (c >= L'0' && c <= L'9') || (c >= L'a' && c <= L'z') || (c >= L'A' && c <= L'Z') ||
           marks.find(c) != std::wstring_view::npos;
}

} // namespace

HeaderArgument parseHeaderArgument(const std::string& option, const std::string& argument) {
    const String text = toArgumentText(option, argument);
    refuseControlCharacters(option, text);
    const std::size_t colon = text.find(L':');
    if (colon == String::npos) throw CUsageError(String(option) + ": '" + text + "' has no ':'");
    const String name = text.substr(0, colon).trim();
    if (name.isEmpty()) throw CUsageError(String(option) + ": '" + text + "' has no name before the ':'");
    const std::wstring_view characters = name.view();
    if (!std::all_of(characters.begin(), characters.end(), &isTokenCharacter))
        throw CUsageError(String(option) + ": '" + name + "' is not a header name");
    return {name, text.substr(colon + 1).trim()};
}

} // namespace vantra::tool
