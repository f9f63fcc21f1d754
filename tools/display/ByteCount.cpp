#include "display/ByteCount.h"

#include <array>

namespace vantra::tool {

using kel::int64;
using kel::String;

String formatByteCount(int64 count) {
    constexpr int64 base = 1024;
    constexpr std::array<const char*, 6> units{"KiB", "MiB", "GiB", "TiB", "PiB", "EiB"};
    if (count < base) return String::fromInt(count) + " B";
    int64 whole = count;
    int64 remainder = 0;
    for (const char* unit : units) {
        remainder = whole % base;
        whole /= base;
        const int64 tenths = whole * 10 + (remainder * 10 + base / 2) / base;
        if (tenths < base * 10 || unit == units.back())
            return String::fromInt(tenths / 10) + "." + String::fromInt(tenths % 10) + " " + unit;
    }
    return {};
}

} // namespace vantra::tool
