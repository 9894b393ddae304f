#pragma once

#include <cstdint>
#include <cstring>
#include <string_view>

#include "containers/Owned.h"

// Texts of fewer bytes than this stand in the record itself: most texts of a
// script are short, and a buffer of its own would cost each a piece of the heap
// and a wait for its memory at every look.
constexpr uint32_t kStringInside = 16;

// The byte string that the library passes around. It may hold zero bytes; what
// takes a zero-terminated text stops at the first of them. A record of zeros is
// an empty string like any other. Every function tolerates null and then
// reports failure; none of them logs. When memory runs out a function fails and
// the text stays as it was, except where it says so. A string may be moved in
// memory, but the bytes of a short one move with it.
struct String {
    // The `data`, with a zero byte behind `length` bytes: reached by
    // `stringBytes`, since `capacity` tells which of the two counts.
    union {
        char* heap;  // owned
        char inside[kStringInside];
    };
    uint32_t length;    // bytes in use, without the terminator
    uint32_t capacity;  // bytes there are, with the terminator; `inside` up to kStringInside
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
    if (s == nullptr) return;
    s->inside[0] = 0;
    s->length = 0;
    s->capacity = kStringInside;
}
void stringRelease(String* s);

// Copies fewer than `kStringInside` bytes without a call: two pieces that overlap.
inline void stringCopyShort(char* to, const char* from, size_t count) {
    const auto copyPieces = [=]<typename Piece>(Piece) {
        Piece first;
        Piece last;
        std::memcpy(&first, from, sizeof first);
        std::memcpy(&last, from + count - sizeof last, sizeof last);
        std::memcpy(to, &first, sizeof first);
        std::memcpy(to + count - sizeof last, &last, sizeof last);
    };
    if (count >= 8) return copyPieces(uint64_t{});
    if (count >= 4) return copyPieces(uint32_t{});
    if (count >= 2) return copyPieces(uint16_t{});
    if (count == 1) *to = *from;
}

// Makes a record that holds nothing yet a copy of a text that is shorter than
// `kStringInside`.
inline void stringInitShort(String* fresh, std::string_view text) {
    stringCopyShort(fresh->inside, text.data(), text.size());
    fresh->inside[text.size()] = 0;
    fresh->length = static_cast<uint32_t>(text.size());
    fresh->capacity = kStringInside;
}

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

// Makes a record that holds nothing yet a copy of `source`; false, with an empty
// string, when memory runs out.
inline bool stringCopyInto(String* fresh, const String* source);

// The bytes of a string that is not null, valid until the string changes or moves.
inline char* stringBytes(String* s) {
    return s->capacity > kStringInside ? s->heap : s->inside;
}
inline const char* stringBytes(const String* s) {
    return s->capacity > kStringInside ? s->heap : s->inside;
}

// The same with their count. Null gives none.
inline std::string_view stringView(const String* s) {
    return s == nullptr ? std::string_view() : std::string_view(stringBytes(s), s->length);
}

// The text with its terminator, never null: "" where there is no text.
inline const char* stringText(const String* s) {
    return s == nullptr ? "" : stringBytes(s);
}

inline bool stringIsEmpty(const String* s) {
    return s == nullptr || s->length == 0;
}

// Makes the text empty and keeps the buffer.
inline void stringClear(String* s) {
    if (s == nullptr) return;
    s->length = 0;
    stringBytes(s)[0] = 0;
}

// Gives the string room for `length` bytes and no more than it needs for that,
// and keeps of the old text what fits.
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
// The same where both texts stand in their records; else nothing and false.
inline bool stringSetInside(String* s, const String* other) {
    if (s->capacity > kStringInside || other->capacity > kStringInside) return false;
    *s = *other;
    return true;
}
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
    char* text = stringBytes(s);
    std::memcpy(text + s->length, bytes, count);
    s->length += count;
    text[s->length] = 0;
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

inline bool stringCopyInto(String* fresh, const String* source) {
    if (source->capacity <= kStringInside) {
        *fresh = *source;
        return true;
    }
    stringInitEmpty(fresh);
    return stringAppend(fresh, source);
}

inline bool stringAppendText(String* s, const char* text) {
    return text != nullptr && stringAppendBytes(s, text, kStringEnd);
}
