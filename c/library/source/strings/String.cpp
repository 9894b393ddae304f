#include "strings/String.h"

#include <algorithm>

#include "containers/Memory.h"

namespace {

// Moves the text, which fits, from a buffer back into the record.
void moveInside(String* s) {
    char* old = s->heap;
    std::memcpy(s->inside, old, s->length);
    s->capacity = kStringInside;
    memFree(&old);
}

// Replaces the buffer by one of `capacity` bytes, keeping the text, which fits.
bool changeCapacity(String* s, uint32_t capacity) {
    const bool isInside = s->capacity <= kStringInside;
    if (capacity <= kStringInside) {
        if (!isInside) moveInside(s);
        s->capacity = kStringInside;
    } else {
        auto* buffer = static_cast<char*>(memResize(isInside ? nullptr : s->heap, capacity));
        if (buffer == nullptr) return false;
        if (isInside) std::memcpy(buffer, s->inside, s->length);
        s->heap = buffer;
        s->capacity = capacity;
    }
    stringBytes(s)[s->length] = 0;
    return true;
}

// Room for `length` bytes in all. Doubling is not visible to anybody and keeps
// appending linear.
bool growTo(String* s, uint64_t length) {
    if (length < s->capacity) return true;
    if (length > kStringMaxLength) return false;
    const uint64_t doubled = std::min<uint64_t>(uint64_t{s->capacity} * 2, UINT32_MAX);
    const uint64_t least = std::max<uint64_t>(length + 1, kStringDefaultCapacity);
    if (doubled > least && changeCapacity(s, static_cast<uint32_t>(doubled))) return true;
    return changeCapacity(s, static_cast<uint32_t>(least));
}

bool textLength(const char* text, uint32_t* length) {
    const size_t count = std::strlen(text);
    *length = static_cast<uint32_t>(count);
    return count <= kStringMaxLength;
}

String* fromBytes(const char* bytes, uint32_t count) {
    if (bytes == nullptr || count > kStringMaxLength) return nullptr;
    String* s = stringNew(count + 1);
    if (s == nullptr) return nullptr;
    std::memcpy(stringBytes(s), bytes, count);
    stringSetLength(s, count);
    return s;
}

}  // namespace

String* stringNew(uint32_t capacity) {
    String* s = static_cast<String*>(memAlloc(sizeof(String)));
    if (s == nullptr) return nullptr;
    stringInitEmpty(s);
    if (!changeCapacity(s, std::max<uint32_t>(capacity, 1))) memFree(&s);
    return s;
}

String* stringNewEmpty() {
    return stringNew(kStringDefaultCapacity);
}

String* stringFromChar(char c) {
    return fromBytes(&c, 1);
}

String* stringFromText(const char* text) {
    uint32_t length = 0;
    return text != nullptr && textLength(text, &length) ? fromBytes(text, length) : nullptr;
}

String* stringFromBytes(const char* bytes, uint32_t count) {
    return count == kStringEnd ? stringFromText(bytes) : fromBytes(bytes, count);
}

String* stringFromView(std::string_view bytes) {
    if (bytes.empty()) return stringNewEmpty();
    if (bytes.size() > kStringMaxLength) return nullptr;
    return fromBytes(bytes.data(), static_cast<uint32_t>(bytes.size()));
}

String* stringClone(const String* source) {
    return source == nullptr ? nullptr : stringFromView(stringView(source));
}

void stringDestroy(String** s) {
    if (s == nullptr || *s == nullptr) return;
    stringRelease(*s);
    memFree(s);
}

void stringDestroyElement(void** element) {
    if (element == nullptr) return;
    String* s = static_cast<String*>(*element);
    stringDestroy(&s);
    *element = nullptr;
}

void stringRelease(String* s) {
    if (s == nullptr) return;
    if (s->capacity > kStringInside) memFree(&s->heap);
    stringInitEmpty(s);
}

bool stringTake(String* s, String* from) {
    if (s == nullptr || from == nullptr) return false;
    if (s == from) return true;
    stringRelease(s);
    *s = *from;
    stringInitEmpty(from);
    return true;
}

bool stringReserve(String* s, uint32_t length) {
    if (s == nullptr || length > kStringMaxLength) return false;
    const uint32_t kept = std::min(s->length, length);
    const uint32_t old = s->length;
    s->length = kept;
    if (changeCapacity(s, length + 1)) return true;
    s->length = old;
    return false;
}

char* stringMakeRoom(String* s, uint32_t count) {
    if (s == nullptr || !growTo(s, uint64_t{s->length} + count)) return nullptr;
    return stringBytes(s) + s->length;
}

bool stringSetLength(String* s, uint32_t length) {
    if (s == nullptr || length >= s->capacity) return s != nullptr && length == 0;
    s->length = length;
    stringBytes(s)[length] = 0;
    return true;
}

bool stringSetChar(String* s, char c) {
    return stringSetBytes(s, &c, 1);
}

bool stringSetText(String* s, const char* text) {
    return stringSetBytes(s, text, kStringEnd);
}

bool stringSetBytes(String* s, const char* bytes, uint32_t count) {
    if (s == nullptr || bytes == nullptr) return false;
    if (count == kStringEnd && !textLength(bytes, &count)) return false;
    // What is a part of the string itself always fits, and is still there to be moved.
    if (count >= s->capacity) {
        stringRelease(s);
        if (!changeCapacity(s, count + 1)) return false;
    }
    std::memmove(stringBytes(s), bytes, count);
    return stringSetLength(s, count);
}

bool stringSetView(String* s, std::string_view bytes) {
    if (bytes.size() > kStringMaxLength) return false;
    return stringSetBytes(s, bytes.empty() ? "" : bytes.data(),
                          static_cast<uint32_t>(bytes.size()));
}

bool stringSet(String* s, const String* other) {
    return other != nullptr && stringSetView(s, stringView(other));
}

bool stringSetSub(String* s, const String* source, uint32_t start, uint32_t count) {
    if (s == nullptr || source == nullptr) return false;
    const std::string_view text = stringView(source);
    return stringSetView(s, start < text.size() ? text.substr(start, count) : std::string_view());
}

bool stringAppendGrowing(String* s, const char* bytes, uint32_t count) {
    if (s == nullptr || bytes == nullptr) return false;
    if (count == kStringEnd && !textLength(bytes, &count)) return false;
    if (count == 0) return true;
    // The buffer moves, and with it what is a part of the string itself.
    const uintptr_t offset =
        reinterpret_cast<uintptr_t>(bytes) - reinterpret_cast<uintptr_t>(stringBytes(s));
    const bool ownBytes = offset < s->capacity;
    if (!growTo(s, uint64_t{s->length} + count)) return false;
    char* text = stringBytes(s);
    std::memmove(text + s->length, ownBytes ? text + offset : bytes, count);
    return stringSetLength(s, s->length + count);
}
