#include "vantra/FTPListDirResult.h"

#include "AllocationCount.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <string>

namespace {

using kel::TBuffer;
using vantra::CFTPListDirResult;

/// A listing as servers send it.
TBuffer<unsigned char> makeListing(std::size_t lineCount) {
    std::string text;
    for (std::size_t line = 0; line < lineCount; ++line)
        text += "modify=20190401123000;perm=adfrw;size=1024;type=file;unique=801U" + std::to_string(line) +
                ";UNIX.group=1000;UNIX.mode=0644;UNIX.owner=1000; report of the month " +
                std::to_string(line) + ".txt\r\n";
    return {reinterpret_cast<const unsigned char*>(text.data()), text.size()};
}

TEST(FTPListingAllocations, AreAnEntryAndItsNameForEachLine) {
    constexpr std::size_t lineCount = 1000;
    constexpr std::size_t forTheListing = 20; // its text, and the array as it grows
    const TBuffer<unsigned char> data = makeListing(lineCount);
    const std::size_t before = encodingtest::getAllocationCount();
    const CFTPListDirResult listing(data);
    const std::size_t count = encodingtest::getAllocationCount() - before;
    EXPECT_EQ(listing.getEntries().size(), lineCount);
    EXPECT_LE(count, 2 * lineCount + forTheListing);
}

} // namespace
