/// @file kel/MTRand.h
/// Random numbers for identifiers. Not for secrets.
#pragma once

#include "kel/Export.h"
#include "kel/Int64.h"
#include "kel/Mutex.h"

#include <random>

namespace kel {

/// A 64-bit Mersenne twister.
///
/// Thread safety: one thread at a time; the global one under its mutex.
class KEL_API CMTRand {
public:
    /// Seeded from the system's source of randomness.
    CMTRand();
    /// The same seed gives the same numbers everywhere.
    explicit CMTRand(uint64 seed) : engine_(seed) {}

    /// The next number, of all 64-bit ones.
    [[nodiscard]] uint64 rand64() { return engine_(); }
    /// Begins anew, as if made with this seed.
    void setSeed(uint64 seed) { engine_.seed(seed); }

    /// @{
    /// The one of the process; hold getGlobalMutex() while using it. A test gives it a seed of its own.
    [[nodiscard]] static CMTRand& getGlobal();
    [[nodiscard]] static CMutex& getGlobalMutex();
    /// @}

private:
    std::mt19937_64 engine_;
};

} // namespace kel
