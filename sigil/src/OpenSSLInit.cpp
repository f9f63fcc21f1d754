#include "sigil/OpenSSLInit.h"

#include <kel/Error.h>

#include <openssl/crypto.h>

namespace sigil {

namespace {

bool initialize() {
    constexpr uint64_t options = OPENSSL_INIT_LOAD_CRYPTO_STRINGS | OPENSSL_INIT_ADD_ALL_CIPHERS |
                                 OPENSSL_INIT_ADD_ALL_DIGESTS | OPENSSL_INIT_NO_ATEXIT;
    if (OPENSSL_init_crypto(options, nullptr) != 1) throw kel::CError("OpenSSL initialization failed.");
    return true;
}

} // namespace

void COpenSSLInit::ensureInitialized() {
    // Made by the first caller while the others wait; after an exception the next caller tries again.
    [[maybe_unused]] static const bool initialized = initialize();
}

} // namespace sigil
