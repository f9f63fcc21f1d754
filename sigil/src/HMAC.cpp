#include "sigil/HMAC.h"

#include "sigil/OpenSSLInit.h"

#include <kel/Error.h>

#include <array>

#include <openssl/evp.h>

namespace sigil {

namespace {

/// OpenSSL takes a null pointer for "no key was given", which is not the same as an empty key.
const unsigned char* bytesOrEmpty(const void* data) noexcept {
    static constexpr unsigned char empty = 0;
    return data ? static_cast<const unsigned char*>(data) : &empty;
}

} // namespace

void calcHMAC_SHA1(const void* key, std::size_t keySize, const void* data, std::size_t dataSize,
                   kel::TBuffer<unsigned char>& result) {
    COpenSSLInit::ensureInitialized();
    // Beside `result`, which may be where the key or the data lies.
    std::array<unsigned char, 20> code;
    std::size_t codeSize = 0;
    if (!EVP_Q_mac(nullptr, "HMAC", nullptr, "SHA1", nullptr, bytesOrEmpty(key), keySize, bytesOrEmpty(data),
                   dataSize, code.data(), code.size(), &codeSize) ||
        codeSize != code.size())
        throw kel::CError("OpenSSL failed to compute an HMAC-SHA1.");
    result.clear();
    result.append(code.data(), code.size());
}

} // namespace sigil
