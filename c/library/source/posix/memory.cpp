#include "platform/memory.h"

#include <sys/mman.h>

#include <cstdint>

void osMemoryUsedWhole(void* start, size_t size) {
    // The pages lie at multiples of their size; what is left at both ends has small ones.
    constexpr uintptr_t kLargePage = uintptr_t{2} << 20;
    const auto first = (reinterpret_cast<uintptr_t>(start) + kLargePage - 1) & ~(kLargePage - 1);
    const auto end = (reinterpret_cast<uintptr_t>(start) + size) & ~(kLargePage - 1);
    if (first < end) madvise(reinterpret_cast<void*>(first), end - first, MADV_HUGEPAGE);
}
