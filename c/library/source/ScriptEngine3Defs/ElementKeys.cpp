// The keys by which sets and maps order most of their elements without looking
// at them: numbers by their bits, strings by their first bytes.

#include <bit>

#include "ScriptEngine3Defs/ScriptObject.h"
#include "containers/RbTree.h"

namespace {

enum ElementKind : uint8_t { kNumberKind = 1, kStringKind = 2 };

constexpr uint64_t kSign = 1ull << 63;
constexpr uint64_t kAllSigns = 0x8080808080808080;
constexpr uint32_t kWord = sizeof(uint64_t);

// Zero of both signs is one number.
uint64_t bitsOf(double number) {
    return std::bit_cast<uint64_t>(number + 0.0);
}

// Rises with the number.
uint64_t orderOfNumber(double number) {
    const uint64_t bits = bitsOf(number);
    return (bits & kSign) != 0 ? ~bits : bits | kSign;
}

// Loads bytes so that the first one is the lowest.
template <typename Word>
uint64_t loaded(const char* bytes) {
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
uint64_t wordOf(const char* bytes, uint32_t count) {
    if (count >= 8) return loaded<uint64_t>(bytes);
    if (count >= 4)
        return loaded<uint32_t>(bytes) | loaded<uint32_t>(bytes + count - 4) << (8 * (count - 4));
    if (count >= 2)
        return loaded<uint16_t>(bytes) | loaded<uint16_t>(bytes + count - 2) << (8 * (count - 2));
    return count == 0 ? 0 : loaded<uint8_t>(bytes);
}

// Bytes count as signed, and a text goes before those that go on behind it: the
// lowest byte stands for no byte as well, and where that makes two orders equal
// the texts themselves decide.
uint64_t orderOfText(const char* bytes, uint32_t length) {
    const uint64_t word = __builtin_bswap64(wordOf(bytes, length)) ^ kAllSigns;
    return length >= kWord ? word : word & ~(UINT64_MAX >> (8 * length));
}

uint64_t mixed(uint64_t hash, uint64_t word) {
    hash = (hash ^ word) * 0x9E3779B97F4A7C15;
    return hash ^ (hash >> 32);
}

uint64_t hashOfText(std::string_view text) {
    uint64_t hash = text.size();
    const char* at = text.data();
    size_t left = text.size();
    for (; left >= kWord; at += kWord, left -= kWord) hash = mixed(hash, wordOf(at, kWord));
    return left == 0 ? hash : mixed(hash, wordOf(at, static_cast<uint32_t>(left)));
}

RbKey keyOfElement(const void* element) {
    const auto* object = static_cast<const ScriptObject*>(element);
    switch (object->type) {
        case kTypeNumber:
            if (object->number != object->number) return {0, kRbNoKind};
            return {orderOfNumber(object->number), kNumberKind};
        case kTypeString:
            return {orderOfText(stringBytes(&object->string), object->string.length), kStringKind};
        default:
            // Compares by a text, which may change: of a pointer it is its target's.
            return {0, kRbNoKind};
    }
}

uint32_t hashOfElement(const void* element) {
    const auto* object = static_cast<const ScriptObject*>(element);
    const uint64_t hash = object->type == kTypeNumber ? mixed(0, bitsOf(object->number))
                                                      : hashOfText(stringView(&object->string));
    return static_cast<uint32_t>(mixed(hash, 0) >> 32);
}

}  // namespace

const RbKeys scriptElementKeys = {keyOfElement, hashOfElement};
