#include "mail/InputFile.h"

#include <kel/Error.h>
#include <kel/FileStream.h>

#include <array>
#include <cerrno>
#include <cstdio>
#include <functional>
#include <system_error>

namespace vantra::tool {

using kel::CError;
using kel::CFileInStream;
using kel::P;
using kel::String;
using kel::TBuffer;

namespace {

std::size_t readStandardInput(unsigned char* buffer, std::size_t size) {
    const std::size_t length = std::fread(buffer, 1, size, stdin);
    if (std::ferror(stdin))
        throw CError("Error reading standard input: " + String(std::generic_category().message(errno)) + ".");
    return length;
}

P<TBuffer<unsigned char>>
readToEnd(const std::function<std::size_t(unsigned char* buffer, std::size_t size)>& read) {
    constexpr std::size_t blockSize = std::size_t{64} * 1024;
    P<TBuffer<unsigned char>> bytes = new TBuffer<unsigned char>();
    std::array<unsigned char, blockSize> block;
    while (const std::size_t length = read(block.data(), block.size())) bytes->append(block.data(), length);
    return bytes;
}

} // namespace

P<TBuffer<unsigned char>> readInputFile(const String& name) {
    if (name == "-") return readToEnd(&readStandardInput);
    const P<CFileInStream> file = new CFileInStream(name);
    return readToEnd([&](unsigned char* buffer, std::size_t size) { return file->read(buffer, size); });
}

} // namespace vantra::tool
