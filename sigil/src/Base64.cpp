#include "sigil/Base64.h"

#include <algorithm>
#include <array>
#include <limits>
#include <new>
#include <string>

#include <openssl/evp.h>

namespace sigil {

kel::String base64Encode(const void* data, std::size_t size) {
    // OpenSSL counts in int; whole groups of three bytes keep the padding to the last part.
    constexpr std::size_t partSize = std::size_t{3} * 16 * 1024;
    std::string text;
    if (size > text.max_size() / 4 * 3 - 3) throw std::bad_alloc();
    text.resize((size + 2) / 3 * 4);

    const auto* bytes = static_cast<const unsigned char*>(data);
    // OpenSSL ends each part with a NUL, which the next part overwrites; the last is that of the string
    // itself.
    auto* out = reinterpret_cast<unsigned char*>(text.data());
    for (std::size_t done = 0; done < size; done += partSize) {
        const int part = static_cast<int>(std::min(partSize, size - done));
        out += EVP_EncodeBlock(out, bytes + done, part);
    }
    return kel::String::fromLatin1(text);
}

void appendBase64Lines(kel::TBuffer<unsigned char>& out, const void* data, std::size_t size) {
    constexpr std::size_t bytesOnALine = 57;
    constexpr std::size_t lineLength = 76;
    if (size > std::numeric_limits<std::size_t>::max() / 4) throw std::bad_alloc();
    out.reserve(out.getUsed() + (size + 2) / 3 * 4 + size / bytesOnALine * 2);

    const auto* bytes = static_cast<const unsigned char*>(data);
    std::array<unsigned char, lineLength + 2> line; // with room for the CR LF, or OpenSSL's NUL
    while (size > bytesOnALine) {
        EVP_EncodeBlock(line.data(), bytes, static_cast<int>(bytesOnALine));
        line[lineLength] = '\r';
        line[lineLength + 1] = '\n';
        out.append(line.data(), line.size());
        bytes += bytesOnALine;
        size -= bytesOnALine;
    }
    const int length = EVP_EncodeBlock(line.data(), bytes, static_cast<int>(size));
    out.append(line.data(), static_cast<std::size_t>(length));
}

} // namespace sigil
