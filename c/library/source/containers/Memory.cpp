#include "containers/Memory.h"

#include <atomic>
#include <cstdint>
#include <cstdlib>

#include "platform/memory.h"

namespace {

constexpr int kAttempts = 60;

// From here on small pages cost more than they save.
constexpr size_t kLargeRequest = size_t{4} << 20;

// Requests left before the planned fault; far away unless a test plans one.
constexpr long long kNoFault = INT64_MAX;
std::atomic<long long> requestsLeft{kNoFault};
std::atomic<bool> allLaterFail{false};
// Nothing is counted before somebody asks: counting for nobody would cost every
// request the price of a lock.
std::atomic<bool> isWatched{false};

bool requestFails() {
    if (!isWatched.load(std::memory_order_relaxed)) return false;
    const long long left = requestsLeft.fetch_sub(1, std::memory_order_relaxed);
    if (left > 0) return false;
    return left == 0 || allLaterFail.load(std::memory_order_relaxed);
}

}  // namespace

void* memAlloc(size_t size) {
    return memResize(nullptr, size);
}

void* memResize(void* old, size_t size) {
    if (requestFails()) return nullptr;
    void* block = nullptr;
    for (int attempt = 0; attempt < kAttempts && block == nullptr; ++attempt)
        block = std::realloc(old, size == 0 ? 1 : size);
    if (size >= kLargeRequest && block != nullptr) osMemoryUsedWhole(block, size);
    return block;
}

void* memAllocZeros(size_t size) {
    if (requestFails()) return nullptr;
    void* block = nullptr;
    for (int attempt = 0; attempt < kAttempts && block == nullptr; ++attempt)
        block = std::calloc(1, size == 0 ? 1 : size);
    if (size >= kLargeRequest && block != nullptr) osMemoryUsedWhole(block, size);
    return block;
}

void memFreePointer(void** pointer) {
    if (pointer == nullptr) return;
    std::free(*pointer);
    *pointer = nullptr;
}

void memFailAfter(long long count, bool andAllLater) {
    isWatched = true;
    allLaterFail = andAllLater;
    requestsLeft = count < 0 ? kNoFault : count;
}

unsigned long long memRequestCount() {
    isWatched = true;
    return static_cast<unsigned long long>(kNoFault - requestsLeft.load());
}
