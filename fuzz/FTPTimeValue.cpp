#include "fuzz/FTPFacts.h"

#include <kel/Time.h>

using kel::CError;
using kel::CTime;
using kel::String;
using vantra::CFTPDirEntry;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    constexpr std::size_t wholeLength = 14;
    constexpr kel::int64 microsecondsPerSecond = 1000000;
    const String value = fuzz::toText(data, size);
    try {
        const CTime time = CFTPDirEntry::parseTimeValue(value);
        fuzz::check(value.length() >= wholeLength, "a short value is rejected");
        const CTime whole = CFTPDirEntry::parseTimeValue(value.substr(0, wholeLength));
        const kel::int64 fraction = time.getMicroseconds() - whole.getMicroseconds();
        fuzz::check(fraction >= 0 && fraction < microsecondsPerSecond, "a fraction stays in its second");
        fuzz::check(CFTPDirEntry("modify=" + value + " name").getModifiedTime() == time,
                    "a fact line holds the same time");
    } catch (const CError& error) {
        fuzz::checkFactLineError(error);
        if (value.length() < wholeLength)
            fuzz::check(error.getMessage() == "Invalid FTP time value: '" + value + "'",
                        "the error quotes the value");
    }
    return 0;
}
