#pragma once

#include <cstdint>
#include <string_view>

#include "containers/GrowArray.h"

// Finds a number by a name: hashed, the names copied into blocks of its own.
// Serves the tables of the parser (variables, commands, functions, files).
class NameTable {
  public:
    static constexpr uint32_t kAbsent = 0xFFFFFFFF;

    NameTable() = default;
    NameTable(const NameTable&) = delete;
    NameTable& operator=(const NameTable&) = delete;
    ~NameTable();

    // The number stored under the name, or `kAbsent`.
    uint32_t find(std::string_view name) const;
    // Stores a number (not `kAbsent`) under a name that is not there yet. False
    // when memory runs out.
    bool add(std::string_view name, uint32_t value);
    uint32_t count() const { return count_; }

  private:
    struct Entry {
        const char* text;
        uint32_t length;
        uint32_t hash;
        uint32_t value;
    };
    bool grow();
    const char* keep(std::string_view name);
    void place(const Entry& entry);

    Entry* entries_ = nullptr;
    uint32_t capacity_ = 0;
    uint32_t count_ = 0;
    GrowArray<char*> chunks_;
    size_t chunkUsed_ = 0;
    size_t chunkSize_ = 0;
};
