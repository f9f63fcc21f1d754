/// What separates the parts of a message. Private to the library.
#pragma once

#include <kel/Int64.h>
#include <kel/String.h>

#include <functional>

namespace vantra {

/// Joins random numbers, in hexadecimal without leading zeros, until there are ten digits or more.
[[nodiscard]] kel::String makeBoundary(const std::function<kel::uint64()>& rand64);

} // namespace vantra
