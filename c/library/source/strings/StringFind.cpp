#include "strings/StringFind.h"

namespace {

int64_t inText(size_t found, uint32_t start) {
    if (found == std::string_view::npos) return kStringNotFound;
    return static_cast<int64_t>(found) + start;
}

bool canSearch(const String* s, uint32_t start) {
    return s != nullptr && start < s->length;
}

int64_t findView(const String* s, std::string_view what, uint32_t start, uint32_t count) {
    if (!canSearch(s, start)) return kStringNotFound;
    return inText(stringRange(s, start, count).find(what), start);
}

int64_t findViewReverse(const String* s, std::string_view what, uint32_t start, uint32_t count) {
    if (!canSearch(s, start)) return kStringNotFound;
    return inText(stringRange(s, start, count).rfind(what), start);
}

// The bytes that a search going backward from `start` looks at, and in `first`
// where they begin.
std::string_view rangeBefore(const String* s, uint32_t start, uint32_t count, uint32_t* first) {
    const std::string_view text = stringView(s);
    const size_t end = start == 0 || start >= text.size() ? text.size() : size_t{start} + 1;
    *first = static_cast<uint32_t>(end > count ? end - count : 0);
    return text.substr(*first, end - *first);
}

}  // namespace

int64_t stringFindChar(const String* s, char c, uint32_t start, uint32_t count) {
    return inText(stringRange(s, start, count).find(c), start);
}

int64_t stringFindCharReverse(const String* s, char c, uint32_t start, uint32_t count) {
    return inText(stringRange(s, start, count).rfind(c), start);
}

int64_t stringFindText(const String* s, const char* text, uint32_t start, uint32_t count) {
    return text == nullptr ? kStringNotFound : findView(s, text, start, count);
}

int64_t stringFindTextReverse(const String* s, const char* text, uint32_t start, uint32_t count) {
    return text == nullptr ? kStringNotFound : findViewReverse(s, text, start, count);
}

int64_t stringFind(const String* s, const String* what, uint32_t start, uint32_t count) {
    return what == nullptr ? kStringNotFound : findView(s, stringView(what), start, count);
}

int64_t stringFindReverse(const String* s, const String* what, uint32_t start, uint32_t count) {
    return what == nullptr ? kStringNotFound : findViewReverse(s, stringView(what), start, count);
}

int64_t stringFindAnyOf(const String* s, const char* set, uint32_t start, uint32_t count) {
    if (set == nullptr) return kStringNotFound;
    return inText(stringRange(s, start, count).find_first_of(set), start);
}

int64_t stringFindNotOf(const String* s, const char* set, uint32_t start, uint32_t count) {
    if (set == nullptr) return kStringNotFound;
    return inText(stringRange(s, start, count).find_first_not_of(set), start);
}

int64_t stringFindLastAnyOf(const String* s, const char* set, uint32_t start, uint32_t count) {
    if (set == nullptr) return kStringNotFound;
    uint32_t first = 0;
    const std::string_view range = rangeBefore(s, start, count, &first);
    return inText(range.find_last_of(set), first);
}

int64_t stringFindLastNotOf(const String* s, const char* set, uint32_t start, uint32_t count) {
    if (set == nullptr) return kStringNotFound;
    uint32_t first = 0;
    const std::string_view range = rangeBefore(s, start, count, &first);
    return inText(range.find_last_not_of(set), first);
}

uint32_t stringCountChar(const String* s, char c, uint32_t start, uint32_t count) {
    uint32_t found = 0;
    for (const char byte : stringRange(s, start, count)) found += byte == c;
    return found;
}
