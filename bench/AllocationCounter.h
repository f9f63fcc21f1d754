/// @file AllocationCounter.h
/// Counts the allocations of the calling thread, libcurl's and the C++ library's alike: the program that
/// links this has its own malloc, calloc and realloc, which count and hand on to the C library's.
#pragma once

#include <cstdint>

namespace bench {

/// Number of allocations that the calling thread has made so far.
std::uint64_t countAllocations() noexcept;

} // namespace bench
