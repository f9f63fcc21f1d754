#include "AllocationCount.h"

#include <atomic>
#include <cstdlib>
#include <new>

namespace encodingtest {

namespace {

std::atomic<std::size_t> allocationCount{0};

} // namespace

std::size_t getAllocationCount() { return allocationCount; }

} // namespace encodingtest

void* operator new(std::size_t size) {
    ++encodingtest::allocationCount;
    if (void* const memory = std::malloc(size)) return memory;
    throw std::bad_alloc();
}

void operator delete(void* memory) noexcept { std::free(memory); }

void operator delete(void* memory, std::size_t) noexcept { std::free(memory); }
