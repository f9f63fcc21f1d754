#include "arguments/RangeArgument.h"

#include "arguments/ArgumentText.h"
#include "Errors.h"

#include <kel/Number.h>

#include <algorithm>
#include <string_view>

namespace vantra::tool {

using kel::int64;
using kel::String;

namespace {

[[noreturn]] void refuse(const std::string& option, const String& text) {
    throw CUsageError(String(option) + ": '" + text + "' is not a range of bytes such as 0-99 or 100-");
}

int64 parsePosition(const std::string& option, const String& text, std::wstring_view digits) {
    if (!std::all_of(digits.begin(), digits.end(), [](wchar_t c) { return c >= L'0' && c <= L'9'; }))
        refuse(option, text);
    try {
        const int64 position = kel::parseInt64(digits);
        if (position == INT64_MAX) refuse(option, text); // its length could not be counted
        return position;
    } catch (const kel::CError&) {
        refuse(option, text);
    }
}

} // namespace

CRangeArgument::CRangeArgument(const std::string& option, const std::string& argument) {
    const String text = toArgumentText(option, argument);
    const std::wstring_view characters = text.view();
    const std::size_t dash = characters.find(L'-');
    if (dash == std::wstring_view::npos) refuse(option, text);
    first_ = parsePosition(option, text, characters.substr(0, dash));
    if (dash + 1 == characters.size()) return;
    const int64 last = parsePosition(option, text, characters.substr(dash + 1));
    if (last < first_) refuse(option, text);
    length_ = last - first_ + 1;
}

void CRangeArgument::applyTo(CNetRequest& request) const { request.setRange(first_, length_); }

} // namespace vantra::tool
