#pragma once

#include <cstddef>
#include <cstdint>

// The data encryption standard, FIPS 46: single blocks, forward only.

constexpr size_t kDesKeySize = 8;
constexpr size_t kDesBlock = 8;
constexpr int kDesRounds = 16;

struct DesKey {
    uint64_t rounds[kDesRounds];  // 48 bits each
};

// Prepares a key. The lowest bit of each byte counts for nothing.
void desPrepare(DesKey* key, const uint8_t* bytes);

// Encrypts one block in place.
void desEncrypt(const DesKey* key, uint8_t* block);
