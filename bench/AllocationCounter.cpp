#include "AllocationCounter.h"

#include <cstddef>

extern "C" {
void* __libc_malloc(std::size_t size);                    // NOLINT(bugprone-reserved-identifier)
void* __libc_calloc(std::size_t count, std::size_t size); // NOLINT(bugprone-reserved-identifier)
void* __libc_realloc(void* memory, std::size_t size);     // NOLINT(bugprone-reserved-identifier)
}

namespace {

// Initial-exec: the first access must not allocate in turn.
__attribute__((tls_model("initial-exec"))) thread_local std::uint64_t allocations = 0;

} // namespace

extern "C" {

void* malloc(std::size_t size) {
    ++allocations;
    return __libc_malloc(size);
}

void* calloc(std::size_t count, std::size_t size) {
    ++allocations;
    return __libc_calloc(count, size);
}

void* realloc(void* memory, std::size_t size) {
    ++allocations;
    return __libc_realloc(memory, size);
}
}

namespace bench {

std::uint64_t countAllocations() noexcept { return allocations; }

} // namespace bench
