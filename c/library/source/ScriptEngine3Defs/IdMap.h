#pragma once

#include <cstdint>

#include "containers/Memory.h"

// Finds a small value by a variable id: open addressing over plain memory, no
// order, no removal.
template <typename Value>
class IdMap {
  public:
    IdMap() = default;
    IdMap(const IdMap&) = delete;
    IdMap& operator=(const IdMap&) = delete;
    ~IdMap() { memFree(&entries_); }

    // The value stored under the id, or null. Valid until the next `add`.
    Value* find(uint32_t id) const {
        if (count_ == 0) return nullptr;
        for (uint32_t at = hash(id) & mask_;; at = (at + 1) & mask_) {
            if (entries_[at].id == id) return &entries_[at].value;
            if (entries_[at].id == kEmpty) return nullptr;
        }
    }

    // Stores a value under an id that is not there yet. False when memory runs out.
    bool add(uint32_t id, Value value) {
        if ((count_ + 1) * 4 > capacity() * 3 && !grow()) return false;
        place(id, value);
        ++count_;
        return true;
    }

    uint32_t count() const { return count_; }

    // Calls `visit(id, value)` for each entry, in no order that means anything.
    template <typename Visit>
    void each(Visit visit) const {
        for (uint32_t at = 0; at < capacity(); ++at)
            if (entries_[at].id != kEmpty) visit(entries_[at].id, entries_[at].value);
    }

  private:
    struct Entry {
        uint32_t id;
        Value value;
    };
    static constexpr uint32_t kEmpty = 0xFFFFFFFF;
    static constexpr uint32_t kFirstCapacity = 8;

    static uint32_t hash(uint32_t id) { return id * 2654435769u; }
    uint32_t capacity() const { return entries_ == nullptr ? 0 : mask_ + 1; }

    void place(uint32_t id, Value value) {
        uint32_t at = hash(id) & mask_;
        while (entries_[at].id != kEmpty) at = (at + 1) & mask_;
        entries_[at] = {id, value};
    }

    bool grow() {
        const uint32_t oldCapacity = capacity();
        const uint32_t newCapacity = oldCapacity == 0 ? kFirstCapacity : oldCapacity * 2;
        auto* larger = static_cast<Entry*>(memAlloc(sizeof(Entry) * newCapacity));
        if (larger == nullptr) return false;
        Entry* old = entries_;
        entries_ = larger;
        mask_ = newCapacity - 1;
        for (uint32_t at = 0; at < newCapacity; ++at) entries_[at].id = kEmpty;
        for (uint32_t at = 0; at < oldCapacity; ++at)
            if (old[at].id != kEmpty) place(old[at].id, old[at].value);
        memFree(&old);
        return true;
    }

    Entry* entries_ = nullptr;
    uint32_t mask_ = 0;
    uint32_t count_ = 0;
};
