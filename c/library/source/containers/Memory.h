#pragma once

#include <cstddef>
#include <new>
#include <utility>

// The one seam through which the library gets memory. No exception leaves it:
// a request that cannot be met gives null, and the caller reports failure.

// Gives `size` bytes (1 when `size` is 0), or null after 60 attempts in a row.
// The caller releases them with `memFree`.
void* memAlloc(size_t size);

// The same with all bytes zero.
void* memAllocZeros(size_t size);

// Like `memAlloc`, keeping the first bytes of `old` that fit, as `realloc` does.
// On failure gives null, and `old` stays as it was.
void* memResize(void* old, size_t size);

// Releases what the pointer holds and clears it. Null is tolerated at both levels.
void memFreePointer(void** pointer);

template <typename T>
void memFree(T** pointer) {
    if (pointer == nullptr) return;
    void* block = const_cast<void*>(static_cast<const void*>(*pointer));
    *pointer = nullptr;
    memFreePointer(&block);
}

// Makes a `T` in memory of `memAlloc`; null when there is none. Ends with `memDelete`.
template <typename T, typename... Args>
T* memNew(Args&&... args) {
    void* place = memAlloc(sizeof(T));
    return place == nullptr ? nullptr : new (place) T(std::forward<Args>(args)...);
}

// Destroys what `memNew` made and clears the pointer. Null-safe.
template <typename T>
void memDelete(T** pointer) {
    if (pointer == nullptr || *pointer == nullptr) return;
    (*pointer)->~T();
    memFree(pointer);
}

// For tests: lets the next `count` requests succeed and fails the one behind
// them, and every later one too while `andAllLater` is set. A negative count
// ends the fault. The count covers every request of the process's threads.
void memFailAfter(long long count, bool andAllLater);

// Requests made, failed ones included, since the first call of this function
// or of `memFailAfter`.
unsigned long long memRequestCount();
