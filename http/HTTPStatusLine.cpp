#include "vantra/HTTPStatusLine.h"

#include <kel/Error.h>
#include <kel/Number.h>

#include <string_view>

namespace vantra {

using kel::CError;
using kel::String;

namespace {

struct StatusLineParts {
    int code;
    std::wstring_view reason;
};

bool startsWithHTTP(std::wstring_view line) {
    constexpr std::wstring_view prefix = L"http/";
    if (line.size() < prefix.size()) return false;
    for (std::size_t i = 0; i < prefix.size(); ++i) {
        if (kel::toLowerASCII(line[i]) != prefix[i]) return false;
    }
    return true;
}

StatusLineParts splitStatusLine(const String& line) {
    const std::wstring_view text = line.view();
    const std::size_t firstBlank = text.find(L' ');
    if (!startsWithHTTP(text) || firstBlank == std::wstring_view::npos)
        throw CError("Invalid HTTP status line: '" + line + "'");
    const std::size_t codeStart = firstBlank + 1;
    const std::size_t secondBlank = text.find(L' ', codeStart);
    const std::wstring_view code = text.substr(codeStart, secondBlank - codeStart);
    const std::wstring_view reason =
        secondBlank == std::wstring_view::npos ? std::wstring_view() : text.substr(secondBlank + 1);
    return {static_cast<int>(kel::parseInt64(code)), kel::trimView(reason)};
}

} // namespace

void parseHTTPStatusLine(const String& line, int& statusCode, String& info) {
    const StatusLineParts parts = splitStatusLine(line);
    String reason(parts.reason); // `info` may be the line
    statusCode = parts.code;
    info = std::move(reason);
}

int getStatusCodeFromHTTPStatusLine(const String& line) { return splitStatusLine(line).code; }

String getInfoFromHTTPStatusLine(const String& line) { return String(splitStatusLine(line).reason); }

} // namespace vantra
