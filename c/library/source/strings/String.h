#pragma once

#include <cstdint>
#include <cstring>
#include <string_view>

#include "containers/Owned.h"

// The byte string that the library passes around. It may hold zero bytes; what
// takes a zero-terminated text stops at the first of them. Null data with
// length and capacity 0 is an empty string like any other. Every function
// tolerates null and then reports failure; none of them logs. When memory runs
// out a function fails and the text stays as it was, except where it says so.
struct String {
    char* data;         // owned, with a zero byte behind `length` bytes
    uint32_t length;    // bytes in use, without the terminator
    uint32_t capacity;  // bytes allocated, with the terminator
};

// As a count: up to the end of the text, or to its terminator.
constexpr uint32_t kStringEnd = UINT32_MAX;
// What the find functions give when there is no such place.
constexpr int64_t kStringNotFound = -1;
// The longest text: its terminator must be counted in 32 bits too.
constexpr uint32_t kStringMaxLength = UINT32_MAX - 1;
constexpr uint32_t kStringDefaultCapacity = 13;

// The functions that make a string give it to the caller, or null when memory
// runs out or, for those that copy, when the source is null.
String* stringNew(uint32_t capacity);
String* stringNewEmpty();
String* stringFromChar(char c);
String* stringFromText(const char* text);
String* stringFromBytes(const char* bytes, uint32_t count);
String* stringFromView(std::string_view bytes);
String* stringClone(const String* source);

// Ends the string and clears the caller's pointer.
void stringDestroy(String** s);
// The same, for containers of strings as destructor of their elements.
void stringDestroyElement(void** element);

// For a string that is a field of another record: makes it empty without
// allocating, and frees its text, after which it is empty again.
inline void stringInitEmpty(String* s) {
    if (s != nullptr) *s = String{nullptr, 0, 0};
}
void stringRelease(String* s);

template <>
struct OwnedTraits<String> {
    static void destroy(String** s) { stringDestroy(s); }
};

// A string that lives in one function: empty at first, released at its end.
struct LocalString : String {
    LocalString() { stringInitEmpty(this); }
    ~LocalString() { stringRelease(this); }
    LocalString(const LocalString&) = delete;
    LocalString& operator=(const LocalString&) = delete;
};

// Gives `s` the buffer of `from`, which becomes empty; nothing is copied.
bool stringTake(String* s, String* from);

// The bytes of the text, valid until the string changes. Null gives none.
inline std::string_view stringView(const String* s) {
    return s == nullptr ? std::string_view() : std::string_view(s->data, s->length);
}

// The text with its terminator, never null: "" where there is no text.
inline const char* stringText(const String* s) {
    return s == nullptr || s->data == nullptr ? "" : s->data;
}

inline bool stringIsEmpty(const String* s) {
    return s == nullptr || s->length == 0;
}

// Makes the text empty and keeps the buffer.
inline void stringClear(String* s) {
    if (s == nullptr || s->data == nullptr) return;
    s->length = 0;
    s->data[0] = 0;
}

// Gives the string a buffer of exactly `length` + 1 bytes and keeps of the old
// text what fits.
bool stringReserve(String* s, uint32_t length);

// Makes room for `count` more bytes behind the text, growing by doubling, and
// gives the place where they may be written, or null. The text does not
// change until `stringSetLength` takes the bytes in.
char* stringMakeRoom(String* s, uint32_t count);

// Sets the length, to at most what the buffer holds, and the terminator.
bool stringSetLength(String* s, uint32_t length);

// Assignment. The source may be a part of the string itself. A source that
// does not fit needs a new buffer; when there is none the string is left empty.
bool stringSetChar(String* s, char c);
bool stringSetText(String* s, const char* text);
bool stringSetBytes(String* s, const char* bytes, uint32_t count);
bool stringSetView(String* s, std::string_view bytes);
bool stringSet(String* s, const String* other);
// The part of `source` from `start`, `count` bytes clamped to the end. A start
// at or past the end gives an empty text and true.
bool stringSetSub(String* s, const String* source, uint32_t start, uint32_t count);

// What stands behind stringAppendBytes and stringAppendChar when the buffer is full.
bool stringAppendGrowing(String* s, const char* bytes, uint32_t count);

// Appends `count` bytes, or with kStringEnd those up to the terminator; none is
// success. They may be a part of the string itself.
inline bool stringAppendBytes(String* s, const char* bytes, uint32_t count) {
    if (s == nullptr || bytes == nullptr || count >= s->capacity - s->length)
        return stringAppendGrowing(s, bytes, count);
    std::memcpy(s->data + s->length, bytes, count);
    s->length += count;
    s->data[s->length] = 0;
    return true;
}

inline bool stringAppendChar(String* s, char c) {
    return stringAppendBytes(s, &c, 1);
}

inline bool stringAppendView(String* s, std::string_view bytes) {
    if (bytes.empty()) return s != nullptr;
    return bytes.size() <= kStringMaxLength &&
           stringAppendBytes(s, bytes.data(), static_cast<uint32_t>(bytes.size()));
}

inline bool stringAppend(String* s, const String* other) {
    return other != nullptr && stringAppendView(s, stringView(other));
}

inline bool stringAppendText(String* s, const char* text) {
    return text != nullptr && stringAppendBytes(s, text, kStringEnd);
}
