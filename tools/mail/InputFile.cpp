#include "mail/InputFile.h"

#include "Input.h"

#include <kel/Stream.h>

#include <array>

namespace vantra::tool {

using kel::IInStream;
using kel::P;
using kel::String;
using kel::TBuffer;

P<TBuffer<unsigned char>> readInputFile(const String& name) {
    constexpr std::size_t blockSize = std::size_t{64} * 1024;
    const P<IInStream> input = openInput(name);
    P<TBuffer<unsigned char>> bytes = new TBuffer<unsigned char>();
    std::array<unsigned char, blockSize> block;
    while (const std::size_t length = input->read(block.data(), block.size()))
        bytes->append(block.data(), length);
    return bytes;
}

} // namespace vantra::tool
