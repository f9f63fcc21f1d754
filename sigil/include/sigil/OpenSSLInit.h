/// @file sigil/OpenSSLInit.h
/// Brings OpenSSL up.
#pragma once

namespace sigil {

/// Thread safety: any thread.
class COpenSSLInit {
public:
    /// Initialises OpenSSL's library and error texts on the first call of the process; later calls do
    /// nothing. OpenSSL is not told to clean up at exit, so that it outlives every other static object.
    /// @throws kel::CError "OpenSSL initialization failed."
    static void ensureInitialized();
};

} // namespace sigil
