/// @file sigil/HMAC.h
/// Keyed message authentication.
#pragma once

#include <kel/Buffer.h>

#include <cstddef>

namespace sigil {

/// HMAC-SHA1 (RFC 2104, FIPS 180-4): puts the 20 bytes for `data` under `key` into `result`, replacing what
/// it held. Key and data may be of any length, zero included. @throws kel::CError if OpenSSL fails.
void calcHMAC_SHA1(const void* key, std::size_t keySize, const void* data, std::size_t dataSize,
                   kel::TBuffer<unsigned char>& result);

} // namespace sigil
