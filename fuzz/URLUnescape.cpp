#include "fuzz/Fuzz.h"
#include "vantra/URLEncoding.h"

#include <kel/Number.h>

#include <string>

using kel::String;
using vantra::urlEscape;
using vantra::urlUnescape;

namespace {

/// Unescapes byte by byte, as plainly as it can be written.
String unescapePlainly(const String& text, bool plusAsSpace) {
    const std::string bytes = text.toUTF8();
    const auto digitAt = [&bytes](std::size_t index) {
        return kel::hexDecodeCharLax(static_cast<wchar_t>(static_cast<unsigned char>(bytes[index])));
    };
    std::string unescaped;
    for (std::size_t i = 0; i < bytes.size(); ++i) {
        if (bytes[i] == '%' && i + 2 < bytes.size() && digitAt(i + 1) >= 0 && digitAt(i + 2) >= 0) {
            unescaped += static_cast<char>(static_cast<unsigned char>(digitAt(i + 1) * 16 + digitAt(i + 2)));
            i += 2;
        } else {
            unescaped += bytes[i] == '+' && plusAsSpace ? ' ' : bytes[i];
        }
    }
    return String::fromUTF8Lax(unescaped);
}

bool isEscaped(const String& text) {
    return text.view().find_first_not_of(
               L"-.0123456789ABCDEFGHIJKLMNOPQRSTUVWXYZ_abcdefghijklmnopqrstuvwxyz~%+") ==
           std::wstring_view::npos;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const String text = fuzz::toText(data, size);
    for (const bool plus : {false, true}) {
        fuzz::check(urlUnescape(text, plus) == unescapePlainly(text, plus), "each escape becomes its byte");
        const String escaped = urlEscape(text, plus);
        fuzz::check(isEscaped(escaped), "escaped text holds unreserved characters only");
        fuzz::check(plus || !escaped.contains("+"), "a blank becomes a plus only where that is asked for");
        fuzz::check(urlUnescape(escaped, plus) == text, "unescaping undoes escaping");
    }
    return 0;
}
