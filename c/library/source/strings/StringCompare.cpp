#include "strings/StringCompare.h"

#include <algorithm>
#include <bit>

namespace {

// Where the two texts first differ, or `count`: eight bytes at a time.
size_t firstDifference(const char* a, const char* b, size_t count) {
    size_t i = 0;
    if constexpr (std::endian::native == std::endian::little) {
        for (; i + sizeof(uint64_t) <= count; i += sizeof(uint64_t)) {
            uint64_t left;
            uint64_t right;
            std::memcpy(&left, a + i, sizeof left);
            std::memcpy(&right, b + i, sizeof right);
            if (left != right) return i + static_cast<size_t>(std::countr_zero(left ^ right)) / 8;
        }
    }
    while (i < count && a[i] == b[i]) ++i;
    return i;
}

int sign(int64_t difference) {
    return (difference > 0) - (difference < 0);
}

unsigned char lowered(char c) {
    return static_cast<unsigned char>(c >= 'A' && c <= 'Z' ? c - 'A' + 'a' : c);
}

unsigned char unchanged(char c) {
    return static_cast<unsigned char>(c);
}

std::string_view untilZero(std::string_view text) {
    return text.substr(0, text.find('\0'));
}

template <unsigned char (*fold)(char)>
int compareTexts(std::string_view a, std::string_view b) {
    const std::string_view left = untilZero(a);
    const std::string_view right = untilZero(b);
    const size_t shared = std::min(left.size(), right.size());
    for (size_t i = 0; i < shared; ++i) {
        const int difference = fold(left[i]) - fold(right[i]);
        if (difference != 0) return sign(difference);
    }
    return sign(static_cast<int64_t>(left.size()) - static_cast<int64_t>(right.size()));
}

// Settles the cases with a null; `compare` sees the others.
template <typename A, typename B, typename Compare>
int compareWithNulls(const A* a, const B* b, Compare compare) {
    if (a == nullptr || b == nullptr) return static_cast<int>(a != nullptr) - (b != nullptr);
    return compare();
}

std::string_view partAt(const String* a, uint32_t pos, size_t length) {
    const std::string_view text = stringView(a);
    return pos < text.size() ? text.substr(pos, length) : std::string_view();
}

}  // namespace

int stringCompareViews(std::string_view a, std::string_view b) {
    const size_t shared = std::min(a.size(), b.size());
    const size_t i = firstDifference(a.data(), b.data(), shared);
    if (i < shared) return sign(static_cast<signed char>(a[i]) - static_cast<signed char>(b[i]));
    return sign(static_cast<int64_t>(a.size()) - static_cast<int64_t>(b.size()));
}

int stringCompareReverse(const String* a, const String* b) {
    return stringCompare(b, a);
}

int8_t stringCompareElements(const void* a, const void* b) {
    return static_cast<int8_t>(
        stringCompare(static_cast<const String*>(a), static_cast<const String*>(b)));
}

int8_t stringCompareElementsReverse(const void* a, const void* b) {
    return stringCompareElements(b, a);
}

int stringCompareText(const String* a, const char* text) {
    return compareWithNulls(a, text, [&] { return compareTexts<unchanged>(stringView(a), text); });
}

int stringCompareNoCase(const String* a, const String* b) {
    return compareWithNulls(a, b,
                            [&] { return compareTexts<lowered>(stringView(a), stringView(b)); });
}

int stringCompareNoCaseText(const String* a, const char* text) {
    return compareWithNulls(a, text, [&] { return compareTexts<lowered>(stringView(a), text); });
}

int stringCompareAt(const String* a, uint32_t pos, const String* b) {
    return compareWithNulls(a, b, [&] {
        const std::string_view other = stringView(b);
        return stringCompareViews(partAt(a, pos, other.size()), other);
    });
}

int stringCompareAtText(const String* a, uint32_t pos, const char* text) {
    return compareWithNulls(a, text, [&] {
        const std::string_view other = text;
        return compareTexts<unchanged>(partAt(a, pos, other.size()), other);
    });
}

int stringCompareNoCaseAtText(const String* a, uint32_t pos, const char* text) {
    return compareWithNulls(a, text, [&] {
        const std::string_view other = text;
        return compareTexts<lowered>(partAt(a, pos, other.size()), other);
    });
}

uint64_t stringHash(const String* s) {
    uint64_t hash = 0;
    for (const char byte : stringView(s))
        hash = hash * 37 + static_cast<uint64_t>(static_cast<signed char>(byte));
    return hash;
}
