#include "fuzz/FTPFacts.h"

using kel::CError;
using kel::String;
using vantra::CFTPDirEntry;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const String line = fuzz::toText(data, size);
    const std::size_t blank = line.find(L' ');
    try {
        const CFTPDirEntry entry(line);
        fuzz::check(blank != String::npos, "a line without a blank is rejected");
        fuzz::check(entry.getName() == line.substr(blank + 1), "the name is all behind the first blank");
        const String facts = line.substr(0, blank);
        if (entry.getType() != kel::IFileInfoBase::Unknown || entry.getSize() != 0)
            fuzz::check(facts.contains("="), "what is known comes from a fact");
        fuzz::check(fuzz::areEqual(CFTPDirEntry(facts.toLower() + " " + entry.getName()), entry),
                    "facts mean the same in lower case");
        if (!facts.isEmpty() && !facts.endsWith(L";"))
            fuzz::check(fuzz::areEqual(CFTPDirEntry(facts + ";x= " + entry.getName()), entry),
                        "an unknown fact changes nothing");
    } catch (const CError& error) {
        fuzz::checkFactLineError(error);
        if (blank == String::npos)
            fuzz::check(error.getMessage() == "Invalid FTP dir entry: '" + line + "'",
                        "the error quotes the whole line");
    }
    return 0;
}
