#pragma once

#include <cstdint>

#include "strings/String.h"

namespace Quorel {

// One owned String for the application layer. Copies copy the text. Where memory
// ran out there is no String, and the object reads as an empty text.
class StringCpp {
  public:
    StringCpp();
    StringCpp(const char* text);
    explicit StringCpp(const String* string);
    StringCpp(const StringCpp& other);
    virtual ~StringCpp() = default;

    StringCpp& operator=(char c);
    StringCpp& operator=(const char* text);
    StringCpp& operator=(const String* string);
    StringCpp& operator=(const StringCpp& other);
    StringCpp& operator+=(char c);
    StringCpp& operator+=(const char* text);
    StringCpp& operator+=(const StringCpp& other);

    void unquote();
    bool isEmpty() const { return stringIsEmpty(string_.get()); }
    // The last byte for an index past the end, a shared zero byte without text.
    char& operator[](uint32_t index);
    char operator[](uint32_t index) const;
    // Never null.
    const char* c_str() const { return stringText(string_.get()); }
    // The String behind, which stays owned here; null when memory ran out.
    const String* string() const { return string_.get(); }
    String* string() { return string_.get(); }

    // Negative, 0 or positive, in the order of stringCompare.
    int compare(const StringCpp& other) const;
    bool operator<(const StringCpp& other) const { return compare(other) < 0; }
    bool operator==(const StringCpp& other) const { return compare(other) == 0; }

    // The range clamped to the text.
    StringCpp substr(uint32_t start, uint32_t count = kStringEnd) const;

  private:
    // The String to assign to, made when there is none.
    String* target();

    Owned<String> string_;
};

StringCpp stringCppFrom(int16_t value);
StringCpp stringCppFrom(uint16_t value);
StringCpp stringCppFrom(int32_t value);
StringCpp stringCppFrom(uint32_t value);
StringCpp stringCppFrom(int64_t value);
StringCpp stringCppFrom(uint64_t value);

int16_t stringCppToInt16(const StringCpp& text);
uint16_t stringCppToUInt16(const StringCpp& text);
int32_t stringCppToInt32(const StringCpp& text);
uint32_t stringCppToUInt32(const StringCpp& text);
int64_t stringCppToInt64(const StringCpp& text);
uint64_t stringCppToUInt64(const StringCpp& text);

}  // namespace Quorel
