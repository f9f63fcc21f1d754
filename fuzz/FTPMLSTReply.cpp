#include "fuzz/FTPFacts.h"
#include "vantra/FTPGetInfoResult.h"

#include <string>

using kel::CError;
using kel::P;
using kel::String;
using vantra::CFTPGetInfoResult;
using vantra::CNetStringList;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    // A line of a reply ends with its line feed, as libcurl hands it over.
    std::string_view rest = fuzz::toBytes(data, size);
    const P<CNetStringList> lines = new CNetStringList();
    String response;
    bool hasStart = false;
    while (!rest.empty()) {
        const std::string line(fuzz::takeLine(rest));
        const std::string ended = rest.empty() ? line : line + "\n";
        lines->addUTF8(ended);
        response += fuzz::toText(std::string_view(ended.c_str()));
        hasStart = hasStart || line.starts_with("250-");
    }
    try {
        const CFTPGetInfoResult result(*lines);
        fuzz::check(result.getInfo().get() != nullptr, "a result has its entry");
        fuzz::check(hasStart, "an entry follows the start of a reply");
    } catch (const CError& error) {
        if (error.getMessage() == "Invalid response to FTP MLST request (no info line found).") {
            fuzz::check(error.getParams().lookup("response") == response, "the error holds all lines");
        } else {
            fuzz::checkFactLineError(error);
            fuzz::check(hasStart, "only the line after the start is read");
        }
    }
    return 0;
}
