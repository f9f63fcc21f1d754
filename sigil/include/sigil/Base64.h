/// @file sigil/Base64.h
/// Bytes as text.
#pragma once

#include <kel/Buffer.h>
#include <kel/String.h>

#include <cstddef>

namespace sigil {

/// Base64 with the standard alphabet and padding, on one line (RFC 4648 §4).
[[nodiscard]] kel::String base64Encode(const void* data, std::size_t size);

/// Appends the same in lines of 76 characters, with CR LF between them and none behind the last (RFC 2045
/// §6.8). The data must not lie inside `out`.
void appendBase64Lines(kel::TBuffer<unsigned char>& out, const void* data, std::size_t size);

} // namespace sigil
