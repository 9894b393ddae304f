#include "strings/StringEdit.h"

#include <algorithm>
#include <cstring>
#include <functional>

#include "strings/StringFind.h"

namespace {

constexpr unsigned kLastBlank = 32;
// What is written as a number in dumps: below the first, and between the others.
constexpr unsigned kFirstPrintable = 32;
constexpr unsigned kFirstHidden = 127;
constexpr unsigned kLastHidden = 160;

bool isBlank(char c) {
    return static_cast<unsigned char>(c) <= kLastBlank;
}

// Where a range begins and ends after clamping; `first` == `last` for none.
struct Range {
    Range(const String* s, uint32_t start, uint32_t count) {
        first = static_cast<uint32_t>(std::min<size_t>(start, stringView(s).size()));
        last = first + static_cast<uint32_t>(stringRange(s, start, count).size());
    }
    uint32_t first;
    uint32_t last;
};

uint32_t trimmedLeft(std::string_view text) {
    return static_cast<uint32_t>(std::find_if_not(text.begin(), text.end(), isBlank) -
                                 text.begin());
}

uint32_t trimmedRight(std::string_view text) {
    return static_cast<uint32_t>(std::find_if_not(text.rbegin(), text.rend(), isBlank) -
                                 text.rbegin());
}

// The first such byte; `last` when there is none.
char* findByte(char* first, char* last, char c) {
    void* hit = std::memchr(first, c, static_cast<size_t>(last - first));
    return hit == nullptr ? last : static_cast<char*>(hit);
}

void dropFront(String* s, uint32_t count) {
    if (count == 0) return;
    char* text = stringBytes(s);
    std::memmove(text, text + count, s->length - count);
    stringSetLength(s, s->length - count);
}

bool mapBytes(String* s, char first, char last, int distance) {
    if (s == nullptr) return false;
    char* text = stringBytes(s);
    for (uint32_t i = 0; i < s->length && text[i] != 0; ++i) {
        if (text[i] >= first && text[i] <= last) text[i] = static_cast<char>(text[i] + distance);
    }
    return true;
}

bool isPartOf(std::string_view part, std::string_view text) {
    return std::less_equal<>()(text.data(), part.data()) &&
           std::less<>()(part.data(), text.data() + text.size());
}

// Where nothing grows the text moves together in its own buffer: a large one
// needs no second. What is still to be searched is never written to.
int64_t replaceInPlace(String* s, std::string_view from, std::string_view to, size_t hit,
                       const std::string_view searched) {
    char* const text = stringBytes(s);
    size_t copied = 0;
    char* end = text;
    int64_t count = 0;
    const auto keep = [&](size_t until) {
        if (end != text + copied) std::memmove(end, text + copied, until - copied);
        end += until - copied;
    };
    for (; hit != std::string_view::npos; hit = searched.find(from, copied)) {
        keep(hit);
        std::memcpy(end, to.data(), to.size());
        end += to.size();
        copied = hit + from.size();
        ++count;
    }
    keep(s->length);
    stringSetLength(s, static_cast<uint32_t>(end - text));
    return count;
}

int64_t replaceAll(String* s, std::string_view from, std::string_view to, const Range& range) {
    if (from.empty()) return 0;
    const std::string_view text = stringView(s);
    const std::string_view searched = text.substr(0, range.last);
    size_t hit = searched.find(from, range.first);
    if (hit == std::string_view::npos) return 0;
    if (to.size() <= from.size() && !isPartOf(from, text) && !isPartOf(to, text))
        return replaceInPlace(s, from, to, hit, searched);
    LocalString built;
    // Near to what is needed, so that a large text is not moved while it grows.
    if (!stringReserve(&built, s->length)) return -1;
    size_t copied = 0;
    int64_t count = 0;
    for (; hit != std::string_view::npos; hit = searched.find(from, copied)) {
        if (!stringAppendView(&built, text.substr(copied, hit - copied)) ||
            !stringAppendView(&built, to))
            return -1;
        copied = hit + from.size();
        ++count;
    }
    if (!stringAppendView(&built, text.substr(copied))) return -1;
    stringTake(s, &built);
    return count;
}

// Puts `left` and `right` fill bytes around the text.
bool padAround(String* s, uint32_t left, uint32_t right, char c) {
    if (stringMakeRoom(s, left + right) == nullptr) return false;
    const uint32_t length = s->length;
    char* text = stringBytes(s);
    std::memmove(text + left, text, length);
    std::memset(text, c, left);
    std::memset(text + left + length, c, right);
    return stringSetLength(s, left + length + right);
}

uint32_t shortfall(const String* s, uint32_t width) {
    return width > s->length ? width - s->length : 0;
}

String* cutAt(String* s, size_t position, size_t separatorLength) {
    const std::string_view text = stringView(s);
    Owned<String> part(stringFromView(text.substr(0, position)));
    if (!part) return nullptr;
    if (position == std::string_view::npos)
        stringClear(s);
    else
        dropFront(s, static_cast<uint32_t>(position + separatorLength));
    return part.release();
}

}  // namespace

bool stringInsertView(String* s, uint32_t pos, std::string_view bytes) {
    if (s == nullptr) return false;
    if (bytes.empty()) return true;
    const std::string_view text = stringView(s);
    const std::string_view front = text.substr(0, pos);
    // A new buffer, since the bytes may be a part of the string itself.
    LocalString built;
    if (text.size() + bytes.size() > kStringMaxLength ||
        stringMakeRoom(&built, static_cast<uint32_t>(text.size() + bytes.size())) == nullptr)
        return false;
    stringAppendView(&built, front);
    stringAppendView(&built, bytes);
    stringAppendView(&built, text.substr(front.size()));
    stringTake(s, &built);
    return true;
}

bool stringInsert(String* s, uint32_t pos, const String* other) {
    return other != nullptr && stringInsertView(s, pos, stringView(other));
}

bool stringInsertText(String* s, uint32_t pos, const char* text) {
    return text != nullptr && stringInsertView(s, pos, text);
}

bool stringInsertChar(String* s, uint32_t pos, char c) {
    return stringInsertView(s, pos, std::string_view(&c, 1));
}

bool stringErase(String* s, uint32_t pos, uint32_t count) {
    if (s == nullptr || pos >= s->length) return false;
    const Range range(s, pos, count);
    const uint32_t behind = s->length - range.last;
    char* text = stringBytes(s);
    std::memmove(text + pos, text + range.last, behind);
    stringSetLength(s, pos + behind);
    return behind > 0;
}

uint32_t stringRemoveChar(String* s, char c, uint32_t start, uint32_t count) {
    const Range range(s, start, count);
    if (range.first == range.last) return 0;
    char* const first = stringBytes(s) + range.first;
    char* const last = stringBytes(s) + range.last;
    char* end = findByte(first, last, c);
    for (char* at = end; at != last;) {
        char* const next = findByte(at + 1, last, c);
        std::memmove(end, at + 1, static_cast<size_t>(next - at) - 1);
        end += next - at - 1;
        at = next;
    }
    const uint32_t removed = static_cast<uint32_t>(last - end);
    std::memmove(end, last, s->length - range.last);
    stringSetLength(s, s->length - removed);
    return removed;
}

uint32_t stringTrimLeft(String* s) {
    const uint32_t count = trimmedLeft(stringView(s));
    if (count > 0) dropFront(s, count);
    return count;
}

uint32_t stringTrimRight(String* s) {
    const uint32_t count = trimmedRight(stringView(s));
    if (count > 0) stringSetLength(s, s->length - count);
    return count;
}

uint32_t stringTrim(String* s) {
    const uint32_t right = stringTrimRight(s);
    return right + stringTrimLeft(s);
}

bool stringUnquote(String* s) {
    const std::string_view text = stringView(s);
    if (text.size() < 2 || text.front() != text.back()) return false;
    if (text.front() != '\'' && text.front() != '"') return false;
    stringSetLength(s, s->length - 1);
    dropFront(s, 1);
    return true;
}

bool stringUpper(String* s) {
    return mapBytes(s, 'a', 'z', 'A' - 'a');
}

bool stringLower(String* s) {
    return mapBytes(s, 'A', 'Z', 'a' - 'A');
}

bool stringReverse(String* s, uint32_t start, uint32_t count) {
    if (s == nullptr) return false;
    const Range range(s, start, count);
    std::reverse(stringBytes(s) + range.first, stringBytes(s) + range.last);
    return true;
}

uint32_t stringReplaceChar(String* s, char from, char to, uint32_t start, uint32_t count) {
    const Range range(s, start, count);
    if (range.first == range.last) return 0;
    uint32_t replaced = 0;
    char* const end = stringBytes(s) + range.last;
    for (char* at = findByte(stringBytes(s) + range.first, end, from); at != end;
         at = findByte(at + 1, end, from), ++replaced)
        *at = to;
    return replaced;
}

int64_t stringReplaceText(String* s, const char* from, const char* to, uint32_t start,
                          uint32_t count) {
    if (s == nullptr || from == nullptr || to == nullptr) return -1;
    return replaceAll(s, from, to, Range(s, start, count));
}

int64_t stringReplace(String* s, const String* from, const String* to, uint32_t start,
                      uint32_t count) {
    if (s == nullptr || from == nullptr || to == nullptr) return -1;
    return replaceAll(s, stringView(from), stringView(to), Range(s, start, count));
}

bool stringPadRight(String* s, uint32_t width, char c) {
    return s != nullptr && padAround(s, 0, shortfall(s, width), c);
}

bool stringPadLeft(String* s, uint32_t width, char c) {
    return s != nullptr && padAround(s, shortfall(s, width), 0, c);
}

bool stringPadCentre(String* s, uint32_t width, char c) {
    if (s == nullptr) return false;
    const uint32_t missing = shortfall(s, width);
    return padAround(s, missing / 2, missing - missing / 2, c);
}

uint32_t stringMakePrintable(String* s, uint32_t start, uint32_t count) {
    const Range range(s, start, count);
    const std::string_view text = stringView(s);
    LocalString built;
    bool done = stringAppendView(&built, text.substr(0, range.first));
    uint32_t changed = 0;
    for (uint32_t i = range.first; i < range.last && done; ++i) {
        const unsigned byte = static_cast<unsigned char>(text[i]);
        if (byte >= kFirstPrintable && (byte < kFirstHidden || byte > kLastHidden)) {
            done = stringAppendChar(&built, text[i]);
            continue;
        }
        const char digits[] = {'#', static_cast<char>('0' + byte / 100),
                               static_cast<char>('0' + byte / 10 % 10),
                               static_cast<char>('0' + byte % 10), ';'};
        const unsigned skipped = byte >= 100 ? 0 : byte >= 10 ? 1 : 2;
        done = stringAppendChar(&built, digits[0]) &&
               stringAppendBytes(&built, digits + 1 + skipped, 4 - skipped);
        ++changed;
    }
    if (changed == 0 || !done || !stringAppendView(&built, text.substr(range.last))) return 0;
    stringTake(s, &built);
    return changed;
}

String* stringSub(const String* s, uint32_t start, uint32_t count) {
    if (s == nullptr) return nullptr;
    if (count != 0 && start >= s->length) return nullptr;
    return stringFromView(stringRange(s, start, count));
}

bool stringCopySub(const String* s, uint32_t start, uint32_t count, String* out) {
    if (s == nullptr || out == nullptr) return false;
    if (s->length > 0 && count != 0 && start >= s->length) return false;
    return stringSetView(out, stringRange(s, start, count));
}

String* stringCutAtChar(String* s, char separator) {
    return s == nullptr ? nullptr : cutAt(s, stringView(s).find(separator), 1);
}

String* stringCutAtText(String* s, const char* separator) {
    if (s == nullptr || separator == nullptr) return nullptr;
    const std::string_view cut = separator;
    const size_t position = cut.empty() ? std::string_view::npos : stringView(s).find(cut);
    return cutAt(s, position, cut.size());
}
