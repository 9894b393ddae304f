#include "platform/memory.h"

#include <sys/mman.h>
#include <unistd.h>

#include <cstdint>

void osMemoryUsedWhole(void* start, size_t size) {
    // From page to page, so that the whole mapping of so large a request is of one
    // kind: a part of it could not be moved by the kernel any more when it grows.
    static const auto kPage = static_cast<uintptr_t>(sysconf(_SC_PAGESIZE));
    const uintptr_t first = reinterpret_cast<uintptr_t>(start) & ~(kPage - 1);
    const uintptr_t end = (reinterpret_cast<uintptr_t>(start) + size + kPage - 1) & ~(kPage - 1);
    madvise(reinterpret_cast<void*>(first), end - first, MADV_HUGEPAGE);
}
