#include "crypt/Md5.h"

#include <algorithm>
#include <bit>
#include <cstring>

namespace {

constexpr int kSteps = 64;
constexpr int kStepsARound = 16;

// The whole part of 2^32 * |sin(step + 1)|.
constexpr uint32_t kSines[kSteps] = {
    0xD76AA478, 0xE8C7B756, 0x242070DB, 0xC1BDCEEE, 0xF57C0FAF, 0x4787C62A, 0xA8304613, 0xFD469501,
    0x698098D8, 0x8B44F7AF, 0xFFFF5BB1, 0x895CD7BE, 0x6B901122, 0xFD987193, 0xA679438E, 0x49B40821,
    0xF61E2562, 0xC040B340, 0x265E5A51, 0xE9B6C7AA, 0xD62F105D, 0x02441453, 0xD8A1E681, 0xE7D3FBC8,
    0x21E1CDE6, 0xC33707D6, 0xF4D50D87, 0x455A14ED, 0xA9E3E905, 0xFCEFA3F8, 0x676F02D9, 0x8D2A4C8A,
    0xFFFA3942, 0x8771F681, 0x6D9D6122, 0xFDE5380C, 0xA4BEEA44, 0x4BDECFA9, 0xF6BB4B60, 0xBEBFBC70,
    0x289B7EC6, 0xEAA127FA, 0xD4EF3085, 0x04881D05, 0xD9D4D039, 0xE6DB99E5, 0x1FA27CF8, 0xC4AC5665,
    0xF4292244, 0x432AFF97, 0xAB9423A7, 0xFC93A039, 0x655B59C3, 0x8F0CCC92, 0xFFEFF47D, 0x85845DD1,
    0x6FA87E4F, 0xFE2CE6E0, 0xA3014314, 0x4E0811A1, 0xF7537E82, 0xBD3AF235, 0x2AD7D2BB, 0xEB86D391,
};

constexpr int kShifts[4][4] = {{7, 12, 17, 22}, {5, 9, 14, 20}, {4, 11, 16, 23}, {6, 10, 15, 21}};

uint32_t loadWord(const uint8_t* bytes) {
    if constexpr (std::endian::native == std::endian::little) {
        uint32_t word;
        std::memcpy(&word, bytes, sizeof word);
        return word;
    }
    return bytes[0] | bytes[1] << 8 | bytes[2] << 16 | static_cast<uint32_t>(bytes[3]) << 24;
}

void storeBytes(uint64_t value, uint8_t* bytes, size_t count) {
    for (size_t at = 0; at < count; ++at) bytes[at] = static_cast<uint8_t>(value >> (8 * at));
}

// The function of a round, and which word of the block a step of it takes.
template <int kRound>
uint32_t mixed(uint32_t b, uint32_t c, uint32_t d) {
    if constexpr (kRound == 0) return d ^ (b & (c ^ d));
    if constexpr (kRound == 1) return c ^ (d & (b ^ c));
    if constexpr (kRound == 2) return b ^ c ^ d;
    return c ^ (b | ~d);
}
template <int kRound>
int wordOf(int step) {
    constexpr int kFactor[] = {1, 5, 3, 7};
    constexpr int kOffset[] = {0, 1, 5, 0};
    return (kFactor[kRound] * step + kOffset[kRound]) % kStepsARound;
}

// The words change places after each step, so that `chain[0]` is the next one's.
template <int kRound>
void round(uint32_t (&chain)[4], const uint32_t (&words)[kStepsARound]) {
    auto& [a, b, c, d] = chain;
#pragma GCC unroll 16
    for (int step = 0; step < kStepsARound; ++step) {
        const uint32_t sum = a + mixed<kRound>(b, c, d) + words[wordOf<kRound>(step)] +
                             kSines[kRound * kStepsARound + step];
        a = d;
        d = c;
        c = b;
        b += std::rotl(sum, kShifts[kRound][step % 4]);
    }
}

void addBlock(uint32_t (&chain)[4], const uint8_t* block) {
    uint32_t words[kStepsARound];
    for (int at = 0; at < kStepsARound; ++at) words[at] = loadWord(block + 4 * at);
    uint32_t next[4];
    std::copy_n(chain, 4, next);
    round<0>(next, words);
    round<1>(next, words);
    round<2>(next, words);
    round<3>(next, words);
    for (int at = 0; at < 4; ++at) chain[at] += next[at];
}

}  // namespace

void md5Init(Md5* md5, const uint32_t (&start)[4]) {
    std::copy_n(start, 4, md5->chain);
    md5->length = 0;
}

void md5Add(Md5* md5, const void* data, size_t size) {
    auto* bytes = static_cast<const uint8_t*>(data);
    const size_t used = md5->length % kMd5Block;
    md5->length += size;
    if (used != 0) {
        const size_t count = std::min(size, kMd5Block - used);
        std::copy_n(bytes, count, md5->block + used);
        if (used + count < kMd5Block) return;
        addBlock(md5->chain, md5->block);
        bytes += count;
        size -= count;
    }
    for (; size >= kMd5Block; bytes += kMd5Block, size -= kMd5Block) addBlock(md5->chain, bytes);
    std::copy_n(bytes, size, md5->block);
}

// Behind the text come one bit, zeros, and the length in bits, up to a whole block.
void md5Finish(const Md5* md5, uint8_t (&digest)[kMd5Size]) {
    Md5 last = *md5;
    const uint8_t end[kMd5Block] = {0x80};
    uint8_t bits[sizeof(uint64_t)];
    storeBytes(last.length * 8, bits, sizeof bits);
    const size_t used = last.length % kMd5Block;
    const size_t room = 2 * kMd5Block - sizeof bits - used;
    md5Add(&last, end, room > kMd5Block ? room - kMd5Block : room);
    md5Add(&last, bits, sizeof bits);
    for (int at = 0; at < 4; ++at) storeBytes(last.chain[at], digest + 4 * at, 4);
}
