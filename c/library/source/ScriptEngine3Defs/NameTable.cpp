#include "ScriptEngine3Defs/NameTable.h"

#include "strings/TextHash.h"

namespace {

constexpr uint32_t kFirstCapacity = 64;
constexpr size_t kChunkBytes = 16 * 1024;

}  // namespace

NameTable::~NameTable() {
    memFree(&entries_);
    for (char*& chunk : chunks_) memFree(&chunk);
}

uint32_t NameTable::find(std::string_view name) const {
    if (count_ == 0) return kAbsent;
    const uint32_t hash = textHash(name);
    for (uint32_t at = hash & (capacity_ - 1);; at = (at + 1) & (capacity_ - 1)) {
        const Entry& entry = entries_[at];
        if (entry.text == nullptr) return kAbsent;
        if (entry.hash == hash && std::string_view(entry.text, entry.length) == name)
            return entry.value;
    }
}

bool NameTable::add(std::string_view name, uint32_t value) {
    if ((count_ + 1) * 4 > capacity_ * 3 && !grow()) return false;
    const char* text = keep(name);
    if (text == nullptr) return false;
    place({text, static_cast<uint32_t>(name.size()), textHash(name), value});
    ++count_;
    return true;
}

void NameTable::place(const Entry& entry) {
    uint32_t at = entry.hash & (capacity_ - 1);
    while (entries_[at].text != nullptr) at = (at + 1) & (capacity_ - 1);
    entries_[at] = entry;
}

bool NameTable::grow() {
    const uint32_t newCapacity = capacity_ == 0 ? kFirstCapacity : capacity_ * 2;
    auto* larger = static_cast<Entry*>(memAlloc(sizeof(Entry) * newCapacity));
    if (larger == nullptr) return false;
    Entry* old = entries_;
    const uint32_t oldCapacity = capacity_;
    entries_ = larger;
    capacity_ = newCapacity;
    for (uint32_t at = 0; at < newCapacity; ++at) entries_[at].text = nullptr;
    for (uint32_t at = 0; at < oldCapacity; ++at)
        if (old[at].text != nullptr) place(old[at]);
    memFree(&old);
    return true;
}

const char* NameTable::keep(std::string_view name) {
    const size_t size = name.size() + 1;
    if (chunkSize_ - chunkUsed_ < size) {
        const size_t wanted = size > kChunkBytes ? size : kChunkBytes;
        auto* chunk = static_cast<char*>(memAlloc(wanted));
        if (chunk == nullptr) return nullptr;
        if (!chunks_.push(chunk)) {
            memFree(&chunk);
            return nullptr;
        }
        chunkUsed_ = 0;
        chunkSize_ = wanted;
    }
    char* place = chunks_.back() + chunkUsed_;
    std::memcpy(place, name.data(), name.size());
    place[name.size()] = 0;
    chunkUsed_ += size;
    return place;
}
