#include "strings/StringCpp.h"

#include "strings/StringCompare.h"
#include "strings/StringEdit.h"
#include "strings/StringFind.h"
#include "strings/StringNumbers.h"

namespace Quorel {

namespace {

// Takes over a String that was just made.
StringCpp adopt(String* made) {
    const Owned<String> text(made);
    return StringCpp(text.get());
}

}  // namespace

StringCpp::StringCpp() : string_(stringNewEmpty()) {}

StringCpp::StringCpp(const char* text) : string_(stringFromText(text)) {}

StringCpp::StringCpp(const String* string) : string_(stringClone(string)) {}

StringCpp::StringCpp(const StringCpp& other) : StringCpp(other.string()) {}

String* StringCpp::target() {
    if (!string_) string_.reset(stringNewEmpty());
    return string_.get();
}

StringCpp& StringCpp::operator=(char c) {
    stringSetChar(target(), c);
    return *this;
}

StringCpp& StringCpp::operator=(const char* text) {
    stringSetText(target(), text);
    return *this;
}

StringCpp& StringCpp::operator=(const String* string) {
    stringSet(target(), string);
    return *this;
}

StringCpp& StringCpp::operator=(const StringCpp& other) {
    stringSetView(target(), stringView(other.string()));
    return *this;
}

StringCpp& StringCpp::operator+=(char c) {
    stringAppendChar(target(), c);
    return *this;
}

StringCpp& StringCpp::operator+=(const char* text) {
    stringAppendText(target(), text);
    return *this;
}

StringCpp& StringCpp::operator+=(const StringCpp& other) {
    stringAppendView(target(), stringView(other.string()));
    return *this;
}

void StringCpp::unquote() {
    stringUnquote(string_.get());
}

char& StringCpp::operator[](uint32_t index) {
    // One a thread, and zero again at each use: what a caller writes into it is lost.
    static thread_local char zero;
    zero = 0;
    if (isEmpty()) return zero;
    return stringBytes(string_.get())[index < string_->length ? index : string_->length - 1];
}

char StringCpp::operator[](uint32_t index) const {
    if (isEmpty()) return 0;
    return stringBytes(string_.get())[index < string_->length ? index : string_->length - 1];
}

int StringCpp::compare(const StringCpp& other) const {
    return stringCompareViews(stringView(string()), stringView(other.string()));
}

StringCpp StringCpp::substr(uint32_t start, uint32_t count) const {
    return adopt(stringFromView(stringRange(string(), start, count)));
}

StringCpp stringCppFrom(int16_t value) {
    return stringCppFrom(int32_t{value});
}

StringCpp stringCppFrom(uint16_t value) {
    return stringCppFrom(int32_t{value});
}

StringCpp stringCppFrom(int32_t value) {
    return adopt(stringFromInt32(value));
}

StringCpp stringCppFrom(uint32_t value) {
    return adopt(stringFromUInt32(value));
}

StringCpp stringCppFrom(int64_t value) {
    return adopt(stringFromInt64(value));
}

StringCpp stringCppFrom(uint64_t value) {
    return adopt(stringFromUInt64(value));
}

int16_t stringCppToInt16(const StringCpp& text) {
    return static_cast<int16_t>(stringToInt32(text.string()));
}

uint16_t stringCppToUInt16(const StringCpp& text) {
    return static_cast<uint16_t>(stringToInt32(text.string()));
}

int32_t stringCppToInt32(const StringCpp& text) {
    return stringToInt32(text.string());
}

uint32_t stringCppToUInt32(const StringCpp& text) {
    return stringToUInt32(text.string());
}

int64_t stringCppToInt64(const StringCpp& text) {
    return stringToInt64(text.string());
}

uint64_t stringCppToUInt64(const StringCpp& text) {
    return stringToUInt64(text.string());
}

}  // namespace Quorel
