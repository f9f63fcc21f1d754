#include "fuzz/Fuzz.h"
#include "vantra/HeaderValues.h"

using kel::String;
using vantra::parseContentDispositionHeader;

namespace {

using Params = kel::TMap<String, String>;

void checkParts(const String& type, const Params& params) {
    fuzz::check(fuzz::isLower(type) && fuzz::isTrimmed(type), "the type is in lower case and trimmed");
    fuzz::check(!type.contains(";"), "the type ends at the first semicolon");
    for (const auto& [name, value] : params) {
        fuzz::check(fuzz::isLower(name) && fuzz::isTrimmed(name), "a name is in lower case and trimmed");
        fuzz::check(!name.contains("="), "a name ends at the equals sign");
        fuzz::check(!value.contains("\""), "a value ends at the quote");
    }
}

/// The same header in the plainest form.
String write(const String& type, const Params& params) {
    String header = type;
    for (const auto& [name, value] : params) header += "; " + name + "=\"" + value + "\"";
    return header;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const String header = fuzz::toText(data, size);
    Params params;
    const String type = parseContentDispositionHeader(header, params);
    checkParts(type, params);

    Params reread;
    fuzz::check(parseContentDispositionHeader(write(type, params), reread) == type && reread == params,
                "what was read can be written and read again");

    Params merged{{"Untouched", "by lower-cased names"}};
    static_cast<void>(parseContentDispositionHeader(header, merged));
    params["Untouched"] = "by lower-cased names";
    fuzz::check(merged == params, "parameters are added to the map");

    Params own{{"content-disposition", header}};
    fuzz::check(parseContentDispositionHeader(own["content-disposition"], own) == type,
                "the header may be a value of the map");
    return 0;
}
