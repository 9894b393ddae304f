#pragma once

#include <cstddef>
#include <cstdint>

// The advanced encryption standard with a key of 256 bits, FIPS 197: single
// blocks, forward only. For data that nobody can time us with: it reads tables.

constexpr size_t kAesKeySize = 32;
constexpr size_t kAesBlock = 16;
constexpr int kAesRounds = 14;

struct AesKey {
    uint8_t rounds[(kAesRounds + 1) * kAesBlock];
};

// Expands a key.
void aesPrepare(AesKey* key, const uint8_t* bytes);

// Encrypts one block in place.
void aesEncrypt(const AesKey* key, uint8_t* block);
