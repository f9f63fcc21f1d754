#include "LogRedaction.h"

#include <kel/P.h>
#include <kel/String.h>

#include <array>
#include <optional>
#include <string_view>

namespace vantra::tool {

using kel::CXMLElement;
using kel::P;
using kel::String;

namespace {

constexpr const char* stripped = "~stripped~";

bool startsWithNoCase(const String& line, const String& prefix) {
    return line.substr(0, prefix.length()).equalsNoCase(prefix);
}

/// How much of a line may be shown; nothing when that is all of it.
std::optional<std::size_t> findSecret(const String& line) {
    constexpr std::wstring_view authorization = L"authorization";
    const std::size_t colon = line.find(L':');
    if (colon != String::npos && line.substr(0, colon).toLower().endsWith(authorization)) return colon + 2;
    if (startsWithNoCase(line, "PASS ")) return std::string_view("PASS ").size();
    if (!startsWithNoCase(line, "AUTH ")) return std::nullopt;
    // "AUTH PLAIN" and "AUTH TLS" hold no secret; what comes behind the mechanism's name does.
    const std::size_t blank = line.find(L' ', std::string_view("AUTH ").size());
    return blank == String::npos ? std::nullopt : std::optional(blank + 1);
}

String redactLine(const String& line) {
    const std::optional<std::size_t> secret = findSecret(line);
    return secret && *secret < line.length() ? line.substr(0, *secret) + stripped : line;
}

String redactLines(const String& text) {
    String result;
    std::size_t start = 0;
    for (std::size_t end = text.find(L'\n'); end != String::npos; end = text.find(L'\n', start)) {
        result += redactLine(text.substr(start, end - start)) + "\n";
        start = end + 1;
    }
    return result + redactLine(text.substr(start));
}

} // namespace

void redactPasswords(CXMLElement& transfer) {
    bool wasChallenged = false;
    for (const P<CXMLElement>& message : transfer.getChildren()) {
        if (message->getAttribute("type") != "header") continue;
        const bool isSent = message->getName() == "send";
        if (isSent) message->setText(wasChallenged ? String(stripped) : redactLines(message->getText()));
        wasChallenged = !isSent && message->getText().startsWith("334");
    }
}

} // namespace vantra::tool
