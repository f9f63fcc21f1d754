#include "AllocationCounter.h"
#include "Benchmarks.h"
#include "Comparison.h"

#include <vantra/vantra.h>

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <string>
#include <string_view>
#include <vector>

namespace bench {

using kel::TBuffer;
using vantra::CFTPListDirResult;

namespace {

/// A listing as ProFTPD sends it.
std::string makeListing(int lines) {
    std::string text;
    for (int line = 0; line < lines; ++line)
        text +=
            "modify=20190401123000;perm=adfrw;size=" + std::to_string(line * 1024LL) +
            ";type=file;unique=801U" + std::to_string(line) +
            ";UNIX.group=0;UNIX.groupname=root;UNIX.mode=0644;UNIX.owner=0;UNIX.ownername=root; picture " +
            std::to_string(line) + ".jpg\r\n";
    return text;
}

/// The least that anyone can do with a listing: find its lines.
std::size_t countLines(std::string_view text) {
    std::vector<std::string_view> lines;
    while (!text.empty()) {
        const std::string_view line = text.substr(0, text.find_first_of("\r\n"));
        if (!line.empty()) lines.push_back(line);
        text.remove_prefix(std::min(line.size() + 1, text.size()));
    }
    return lines.size();
}

} // namespace

void benchFTPListing(int rounds, int lines) {
    const std::string text = makeListing(lines);
    const TBuffer<unsigned char> data(reinterpret_cast<const unsigned char*>(text.data()), text.size());
    const auto count = static_cast<std::size_t>(lines);
    const auto runLibrary = [&] {
        const CFTPListDirResult listing(data);
        require(listing.getEntries().size() == count, "entries are missing");
    };
    const auto runBare = [&] { require(countLines(text) == count, "lines are missing"); };
    const ComparisonResult result = compare(rounds, runLibrary, runBare);
    printComparison("MLSD listing, per line", result, lines, "ns", 1e9);

    const std::uint64_t before = countAllocations();
    runLibrary();
    std::printf("%-28s %.0f lines per second, %.2f allocations per line; the bare side only splits lines\n",
                "", lines / result.librarySeconds,
                static_cast<double>(countAllocations() - before) / static_cast<double>(lines));
}

} // namespace bench
