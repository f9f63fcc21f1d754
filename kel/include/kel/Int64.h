/// @file kel/Int64.h
/// 64-bit integers under the same name on every platform.
#pragma once

#include <cstdint>

namespace kel {

/// @{
/// 64 bits on every platform.
using int64 = std::int64_t;
using uint64 = std::uint64_t;
/// @}

} // namespace kel
