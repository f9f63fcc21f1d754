/// @file AllocationCount.h
/// Counts what the process takes from the heap.
#pragma once

#include <cstddef>

namespace encodingtest {

/// How often operator new was called so far.
std::size_t getAllocationCount();

} // namespace encodingtest
