/// @file sigil/Base64.h
/// Bytes as text.
#pragma once

#include <kel/String.h>

#include <cstddef>

namespace sigil {

/// Base64 with the standard alphabet and padding, on one line (RFC 4648 §4).
[[nodiscard]] kel::String base64Encode(const void* data, std::size_t size);

} // namespace sigil
