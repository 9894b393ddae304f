#pragma once

#include <bit>
#include <cstdint>
#include <cstring>
#include <string_view>

// Numbers made of bytes, for tables in memory: they mean nothing outside it.

// Loads bytes so that the first one is the lowest.
template <typename Word>
uint64_t textLoad(const char* bytes) {
    Word word;
    std::memcpy(&word, bytes, sizeof word);
    if constexpr (std::endian::native == std::endian::little) return word;
    uint64_t turned = 0;
    for (size_t at = 0; at < sizeof word; ++at)
        turned |= uint64_t{static_cast<unsigned char>(bytes[at])} << (8 * at);
    return turned;
}

// Up to eight bytes, the first one lowest, zeros behind them. Two loads that
// overlap give the same bytes twice.
inline uint64_t textWord(const char* bytes, size_t count) {
    if (count >= 8) return textLoad<uint64_t>(bytes);
    if (count >= 4)
        return textLoad<uint32_t>(bytes) | textLoad<uint32_t>(bytes + count - 4)
                                               << (8 * (count - 4));
    if (count >= 2)
        return textLoad<uint16_t>(bytes) | textLoad<uint16_t>(bytes + count - 2)
                                               << (8 * (count - 2));
    return count == 0 ? 0 : textLoad<uint8_t>(bytes);
}

// Mixes a word into a hash: both halves of a product, so that each bit of the word
// can change every bit of the hash.
inline uint64_t hashMixed(uint64_t hash, uint64_t word) {
    __extension__ typedef unsigned __int128 Wide;
    const Wide product = Wide{hash ^ word ^ 0xA0761D6478BD642F} * 0xE7037ED1A0B428DB;
    return static_cast<uint64_t>(product) ^ static_cast<uint64_t>(product >> 64);
}

// 32 well mixed bits.
inline uint32_t hashFolded(uint64_t hash) {
    return static_cast<uint32_t>(hash ^ (hash >> 32));
}

// A hash of a text, eight bytes at a time.
inline uint32_t textHash(std::string_view text) {
    uint64_t hash = text.size();
    const char* at = text.data();
    size_t left = text.size();
    for (; left >= 8; at += 8, left -= 8) hash = hashMixed(hash, textLoad<uint64_t>(at));
    return hashFolded(left == 0 ? hash : hashMixed(hash, textWord(at, left)));
}
