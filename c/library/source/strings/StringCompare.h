#pragma once

#include <cstdint>
#include <string_view>

#include "strings/String.h"

// Comparisons give -1, 0 or 1. A null is smaller than anything but a null.

// Byte by byte as signed bytes, so 128 to 255 stand before 0 to 127; then the
// shorter text is the smaller. Zero bytes count like others.
int stringCompareViews(std::string_view a, std::string_view b);

inline int stringCompare(const String* a, const String* b) {
    if (a == nullptr || b == nullptr) return static_cast<int>(a != nullptr) - (b != nullptr);
    return stringCompareViews(stringView(a), stringView(b));
}

// Equal length and bytes; two nulls are equal.
inline bool stringEqual(const String* a, const String* b) {
    return (a == nullptr) == (b == nullptr) && stringView(a) == stringView(b);
}

// The opposite order, for descending sorts.
int stringCompareReverse(const String* a, const String* b);

// As comparisons of the elements of containers of strings.
int8_t stringCompareElements(const void* a, const void* b);
int8_t stringCompareElementsReverse(const void* a, const void* b);

// Unsigned bytes up to the terminator or the first zero byte.
int stringCompareText(const String* a, const char* text);

// The same, with A to Z counting as a to z.
int stringCompareNoCase(const String* a, const String* b);
int stringCompareNoCaseText(const String* a, const char* text);

// Compare the part of `a` at `pos` that is as long as the other, each in the
// order of its namesake above. Past the end that part is empty.
int stringCompareAt(const String* a, uint32_t pos, const String* b);
int stringCompareAtText(const String* a, uint32_t pos, const char* text);
int stringCompareNoCaseAtText(const String* a, uint32_t pos, const char* text);

// 64 bits over all bytes: h = h * 37 + byte, as signed byte. Empty and null give 0.
uint64_t stringHash(const String* s);
