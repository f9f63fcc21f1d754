/// @file Bytes.h
/// Bytes between the tests' std::string and the library's buffers and streams.
#pragma once

#include "vantra/MimeMessage.h"

#include <kel/Buffer.h>
#include <kel/MemoryStream.h>
#include <kel/P.h>

#include <string>
#include <string_view>

namespace vantra::test {

using ByteBuffer = kel::TBuffer<unsigned char>;

inline kel::P<ByteBuffer> makeBuffer(std::string_view bytes) {
    return new ByteBuffer(reinterpret_cast<const unsigned char*>(bytes.data()), bytes.size());
}

inline std::string toString(const ByteBuffer& buffer) { return {buffer.begin(), buffer.end()}; }

/// What a message stores, header block included.
inline std::string storeMessage(const CMimeMessage& message) {
    const kel::P<kel::CMemoryStream> stream = new kel::CMemoryStream();
    message.store(*stream);
    return toString(*stream->getBuffer());
}

inline std::string storeBodyOf(const CMimeMessage& message) {
    const kel::P<kel::CMemoryStream> stream = new kel::CMemoryStream();
    message.storeBody(*stream);
    return toString(*stream->getBuffer());
}

} // namespace vantra::test
