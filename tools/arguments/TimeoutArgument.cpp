#include "arguments/TimeoutArgument.h"

#include "arguments/ArgumentText.h"
#include "Errors.h"

#include <kel/Number.h>

namespace vantra::tool {

using kel::CTimeSpan;
using kel::String;

namespace {

constexpr double maxSeconds = 4000000;

[[noreturn]] void refuse(const std::string& option, const String& text) {
    throw CUsageError(String(option) + ": '" + text +
                      "' is not a number of seconds greater than 0 and at most 4000000");
}

} // namespace

CTimeSpan parseTimeoutArgument(const std::string& option, const std::string& argument) {
    const String text = toArgumentText(option, argument);
    double seconds = 0;
    try {
        seconds = kel::parseSimpleDouble(text);
    } catch (const kel::CError&) {
        refuse(option, text);
    }
    if (!(seconds > 0) || seconds > maxSeconds) refuse(option, text);
    const kel::int64 microseconds = CTimeSpan::fromSeconds(seconds).getMicroseconds();
    return CTimeSpan::fromMilliseconds(microseconds == 0 ? 1 : (microseconds + 999) / 1000);
}

} // namespace vantra::tool
