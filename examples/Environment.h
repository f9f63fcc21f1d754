/// @file Environment.h
/// Settings from the environment. Secrets belong there or into a file: every user of a machine can read the
/// command lines of all programs.
#pragma once

#include <vantra/NetRequest.h>

#include <kel/Error.h>
#include <kel/String.h>

#include <cstdlib>

/// The variable's value; empty when it is not set.
inline kel::String getSetting(const char* name) { return std::getenv(name); }

inline kel::String requireSetting(const char* name) {
    const kel::String value = getSetting(name);
    if (value.isEmpty()) throw kel::CError(kel::String(name) + " is not set in the environment.");
    return value;
}

/// Trusts the certificates in the file that SSL_CERT_FILE names, if it does, in place of the system's.
inline void applyTrustedRoots(vantra::CNetRequest& request) {
    const kel::String file = getSetting("SSL_CERT_FILE");
    if (!file.isEmpty()) request.setRootCertBundlePath(file);
}
