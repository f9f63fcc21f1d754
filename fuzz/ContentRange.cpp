#include "fuzz/Fuzz.h"
#include "vantra/HTTPContentRange.h"

using kel::CError;
using kel::P;
using kel::String;
using vantra::CHTTPContentRange;

namespace {

String write(const CHTTPContentRange& range) {
    const String positions = range.getFirst() == CHTTPContentRange::unknown
                                 ? String("*")
                                 : String::fromInt(range.getFirst()) + "-" + String::fromInt(range.getLast());
    return range.getUnit() + " " + positions + "/" + String::fromInt(range.getEntireContentSize());
}

bool areEqual(const CHTTPContentRange& left, const CHTTPContentRange& right) {
    return left.getUnit() == right.getUnit() && left.getFirst() == right.getFirst() &&
           left.getLast() == right.getLast() && left.getEntireContentSize() == right.getEntireContentSize();
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const String value = fuzz::toText(data, size);
    try {
        const P<CHTTPContentRange> range = CHTTPContentRange::parse(value);
        fuzz::check(!range->getUnit().isEmpty() && fuzz::isLower(range->getUnit()),
                    "the unit is in lower case");
        fuzz::check(range->getFirst() >= CHTTPContentRange::unknown, "the first position has no sign");
        fuzz::check(range->getFirst() >= 0 || range->getLast() == CHTTPContentRange::unknown,
                    "both positions are known or none");
        fuzz::check(areEqual(*CHTTPContentRange::parse(write(*range)), *range),
                    "what was read can be written and read again");
    } catch (const CError& error) {
        fuzz::check(error.getMessage() == "Invalid HTTP Content-Range header: " + value.trim() ||
                        fuzz::isIntegerError(error),
                    "only the documented errors are thrown");
        fuzz::check(error.getCodeDomain().isEmpty() && error.getCode() == -1, "the error has no code");
    }
    return 0;
}
