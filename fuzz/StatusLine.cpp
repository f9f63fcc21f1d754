#include "fuzz/Fuzz.h"
#include "vantra/HTTPStatusLine.h"

#include <optional>

using kel::CError;
using kel::String;

namespace {

/// What `action` gives, or nothing when it throws one of the documented errors.
template <class Action>
auto tryReading(const String& line, Action action) -> std::optional<decltype(action())> {
    try {
        return action();
    } catch (const CError& error) {
        fuzz::check(error.getMessage() == "Invalid HTTP status line: '" + line + "'" ||
                        fuzz::isIntegerError(error),
                    "only the documented errors are thrown");
        return {};
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const String line = fuzz::toText(data, size);
    int code = -12345;
    String reason = "before";
    const bool succeeded = tryReading(line, [&] {
                               vantra::parseHTTPStatusLine(line, code, reason);
                               return true;
                           }).has_value();
    const std::optional<int> codeAlone =
        tryReading(line, [&] { return vantra::getStatusCodeFromHTTPStatusLine(line); });
    const std::optional<String> reasonAlone =
        tryReading(line, [&] { return vantra::getInfoFromHTTPStatusLine(line); });
    if (succeeded) {
        fuzz::check(line.substr(0, 5).equalsNoCase("HTTP/"), "a status line starts with HTTP");
        fuzz::check(fuzz::isTrimmed(reason), "the reason is trimmed");
        fuzz::check(codeAlone == code && reasonAlone == reason, "the parts alone are the same");
        vantra::parseHTTPStatusLine("HTTP/1.1 " + String::fromInt(code) + " " + reason, code, reason);
        fuzz::check(codeAlone == code && reasonAlone == reason,
                    "what was read can be written and read again");
    } else {
        fuzz::check(code == -12345 && reason == "before", "the outputs stay when an error is thrown");
        fuzz::check(!codeAlone && !reasonAlone, "the parts alone fail too");
    }
    return 0;
}
