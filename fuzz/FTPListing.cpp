#include "fuzz/FTPFacts.h"
#include "vantra/FTPListDirResult.h"

#include <kel/Buffer.h>

#include <algorithm>
#include <vector>

using kel::CError;
using kel::String;
using vantra::CFTPDirEntry;
using vantra::CFTPListDirResult;

namespace {

/// The lines that are not empty.
std::vector<std::string_view> splitLines(std::string_view bytes) {
    std::vector<std::string_view> lines;
    while (!bytes.empty()) {
        const std::string_view line = bytes.substr(0, bytes.find_first_of("\r\n"));
        if (!line.empty()) lines.push_back(line);
        bytes.remove_prefix(line.size());
        bytes.remove_prefix(std::min(bytes.size(), bytes.find_first_not_of("\r\n")));
    }
    return lines;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const kel::TBuffer<unsigned char> buffer(data, size);
    const std::string_view bytes = fuzz::toBytes(data, size);
    try {
        const CFTPListDirResult listing(buffer);
        const std::vector<std::string_view> lines = splitLines(bytes);
        fuzz::check(listing.getEntries().size() == lines.size(), "every line is an entry");
        for (std::size_t i = 0; i < lines.size(); ++i)
            fuzz::check(fuzz::areEqual(*listing.getEntries()[i], CFTPDirEntry(String(lines[i]))),
                        "an entry is what its line says");
    } catch (const CError& error) {
        String text;
        const bool isText = String::tryFromUTF8(bytes, text);
        if (isText) fuzz::checkFactLineError(error);
        fuzz::check(isText == (error.getMessage() != "Invalid UTF-8 text."), "only UTF-8 is read");
    }
    return 0;
}
