#pragma once

#include <cstddef>

// Says of a large piece of memory that it will be used whole, so that the
// system may give it in larger pages. A hint: it has no result, and a system
// without such pages does nothing.
void osMemoryUsedWhole(void* start, size_t size);
