#pragma once

#include <cstddef>
#include <cstdint>

// The message digest of RFC 1321. The words that its chain starts from are the
// caller's choice: with other words than the standard's it is another function
// of the same strength.

constexpr uint32_t kMd5Start[4] = {0x67452301, 0xEFCDAB89, 0x98BADCFE, 0x10325476};
constexpr size_t kMd5Size = 16;
constexpr size_t kMd5Block = 64;

struct Md5 {
    uint32_t chain[4];
    uint64_t length;           // bytes added so far
    uint8_t block[kMd5Block];  // the last ones, until they fill a block
};

void md5Init(Md5* md5, const uint32_t (&start)[4]);
void md5Add(Md5* md5, const void* data, size_t size);

// The digest of what was added; more may be added afterwards.
void md5Finish(const Md5* md5, uint8_t (&digest)[kMd5Size]);
