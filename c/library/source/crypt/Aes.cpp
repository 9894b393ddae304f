#include "crypt/Aes.h"

#include <algorithm>
#include <array>
#include <bit>

namespace {

// Numbers of the field with 256 elements: times x, around the polynomial
// x^8 + x^4 + x^3 + x + 1.
constexpr uint8_t doubled(uint8_t value) {
    return static_cast<uint8_t>(value << 1 ^ (value & 0x80 ? 0x1B : 0));
}

// Each number's inverse, its bits mixed. `power` runs through all numbers but 0
// as the powers of x + 1, and `inverse` through their inverses.
constexpr std::array<uint8_t, 256> makeBox() {
    std::array<uint8_t, 256> box{};
    uint8_t power = 1;
    uint8_t inverse = 1;
    do {
        power = static_cast<uint8_t>(power ^ doubled(power));
        for (const int shift : {1, 2, 4})
            inverse = static_cast<uint8_t>(inverse ^ inverse << shift);
        if (inverse & 0x80) inverse ^= 0x09;
        box[power] = static_cast<uint8_t>(inverse ^ std::rotl(inverse, 1) ^ std::rotl(inverse, 2) ^
                                          std::rotl(inverse, 3) ^ std::rotl(inverse, 4) ^ 0x63);
    } while (power != 1);
    box[0] = 0x63;
    return box;
}
constexpr std::array<uint8_t, 256> kBox = makeBox();

constexpr size_t kWord = 4;

void addRoundKey(uint8_t* block, const AesKey* key, int round) {
    for (size_t at = 0; at < kAesBlock; ++at)
        block[at] ^= key->rounds[static_cast<size_t>(round) * kAesBlock + at];
}

// Puts each byte through the box, and turns row r of the block left by r bytes:
// the block's columns are its words.
void substituteAndShift(uint8_t* block) {
    uint8_t old[kAesBlock];
    std::copy_n(block, kAesBlock, old);
    for (size_t at = 0; at < kAesBlock; ++at)
        block[at] = kBox[old[(at + kWord * (at % kWord)) % kAesBlock]];
}

void mixColumn(uint8_t* column) {
    const uint8_t first = column[0];
    const auto all = static_cast<uint8_t>(column[0] ^ column[1] ^ column[2] ^ column[3]);
    for (size_t at = 0; at < kWord; ++at) {
        const uint8_t next = at + 1 < kWord ? column[at + 1] : first;
        column[at] ^= static_cast<uint8_t>(all ^ doubled(column[at] ^ next));
    }
}

}  // namespace

void aesPrepare(AesKey* key, const uint8_t* bytes) {
    constexpr size_t kHalfKey = kAesKeySize / 2;
    uint8_t* out = std::copy_n(bytes, kAesKeySize, key->rounds);
    uint8_t constant = 1;
    for (size_t at = kAesKeySize; at < sizeof key->rounds; at += kWord, out += kWord) {
        uint8_t word[kWord];
        std::copy_n(out - kWord, kWord, word);
        if (at % kAesKeySize == 0) std::rotate(word, word + 1, word + kWord);
        if (at % kHalfKey == 0)
            for (uint8_t& byte : word) byte = kBox[byte];
        if (at % kAesKeySize == 0) {
            word[0] ^= constant;
            constant = doubled(constant);
        }
        for (size_t byte = 0; byte < kWord; ++byte)
            out[byte] = word[byte] ^ *(out + byte - kAesKeySize);
    }
}

void aesEncrypt(const AesKey* key, uint8_t* block) {
    addRoundKey(block, key, 0);
    for (int round = 1; round <= kAesRounds; ++round) {
        substituteAndShift(block);
        if (round < kAesRounds)
            for (size_t column = 0; column < kAesBlock; column += kWord) mixColumn(block + column);
        addRoundKey(block, key, round);
    }
}
