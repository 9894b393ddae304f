// The keys by which sets and maps order most of their elements without looking
// at them: numbers by their bits, strings by their first bytes.

#include <bit>

#include "ScriptEngine3Defs/ScriptObject.h"
#include "containers/RbTree.h"
#include "strings/TextHash.h"

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

// Bytes count as signed, and a text goes before those that go on behind it: the
// lowest byte stands for no byte as well, and where that makes two orders equal
// the texts themselves decide.
uint64_t orderOfText(const char* bytes, uint32_t length) {
    const uint64_t word = __builtin_bswap64(textWord(bytes, length)) ^ kAllSigns;
    return length >= kWord ? word : word & ~(UINT64_MAX >> (8 * length));
}

// Most keys are short: two words that overlap.
bool equalTexts(std::string_view a, std::string_view b) {
    const size_t count = a.size();
    if (count != b.size()) return false;
    if (count > 2 * kWord) return a == b;
    if (textWord(a.data(), count) != textWord(b.data(), count)) return false;
    const size_t last = count - kWord;
    return count <= kWord ||
           textLoad<uint64_t>(a.data() + last) == textLoad<uint64_t>(b.data() + last);
}

uint8_t kindOfElement(const void* element) {
    const auto* object = static_cast<const ScriptObject*>(element);
    if (object->type == kTypeString) return kStringKind;
    // No order has a place for what is not a number. Values of other types compare
    // by a text, which may change: that of a pointer is its target's.
    const bool isNumber = object->type == kTypeNumber && object->number == object->number;
    return isNumber ? static_cast<uint8_t>(kNumberKind) : static_cast<uint8_t>(kRbNoKind);
}

uint64_t orderOfElement(const void* element) {
    const auto* object = static_cast<const ScriptObject*>(element);
    if (object->type == kTypeNumber) return orderOfNumber(object->number);
    return orderOfText(stringBytes(&object->string), object->string.length);
}

bool equalElements(const void* left, const void* right) {
    const auto* a = static_cast<const ScriptObject*>(left);
    const auto* b = static_cast<const ScriptObject*>(right);
    return a->type == kTypeNumber ? a->number == b->number
                                  : equalTexts(stringView(&a->string), stringView(&b->string));
}

uint32_t hashOfElement(const void* element) {
    const auto* object = static_cast<const ScriptObject*>(element);
    return object->type == kTypeNumber ? hashFolded(hashMixed(0, bitsOf(object->number)))
                                       : textHash(stringView(&object->string));
}

}  // namespace

const RbKeys scriptElementKeys = {kindOfElement, orderOfElement, equalElements, hashOfElement};
