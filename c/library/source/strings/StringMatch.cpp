#include "strings/StringMatch.h"

#include <algorithm>
#include <string_view>

#include "containers/Memory.h"

namespace {

constexpr char kAnyRun = '*';
constexpr char kAnyByte = '?';

// A copy of a few bytes, on the stack when they are short.
class BytesCopy {
  public:
    explicit BytesCopy(std::string_view source) : size_(source.size()) {
        if (size_ > sizeof near_) {
            far_ = static_cast<char*>(memAlloc(size_));
            bytes_ = far_;
        }
        if (bytes_ != nullptr) std::copy(source.begin(), source.end(), bytes_);
    }
    ~BytesCopy() { memFree(&far_); }
    BytesCopy(const BytesCopy&) = delete;
    BytesCopy& operator=(const BytesCopy&) = delete;

    explicit operator bool() const { return bytes_ != nullptr; }
    std::string_view view() const { return {bytes_, size_}; }

    // A to Z only, up to the first zero byte.
    void lower() {
        for (size_t i = 0; i < size_ && bytes_[i] != 0; ++i) {
            if (bytes_[i] >= 'A' && bytes_[i] <= 'Z')
                bytes_[i] = static_cast<char>(bytes_[i] - 'A' + 'a');
        }
    }

    // Drops wildcards that stand directly behind a `*`. A `*` behind a `?` stays,
    // but does not count as the one before for what follows.
    void normalisePattern() {
        size_t kept = 0;
        char previous = 0;
        for (size_t i = 0; i < size_; ++i) {
            const char c = bytes_[i];
            const bool wildcard = c == kAnyRun || c == kAnyByte;
            if (wildcard && previous == kAnyRun) continue;
            bytes_[kept++] = c;
            if (c != kAnyRun || previous != kAnyByte) previous = c;
        }
        size_ = kept;
    }

  private:
    char near_[256];
    char* far_ = nullptr;
    char* bytes_ = near_;
    size_t size_;
};

// Whether normalising would leave the pattern as it is.
bool isNormal(std::string_view pattern) {
    for (size_t star = pattern.find(kAnyRun); star < pattern.size();
         star = pattern.find(kAnyRun, star + 1)) {
        const char next = star + 1 < pattern.size() ? pattern[star + 1] : 0;
        if (next == kAnyRun || next == kAnyByte || (star > 0 && pattern[star - 1] == kAnyByte))
            return false;
    }
    return true;
}

// Whether the text begins as the pattern does up to its first wildcard. Most
// texts are refused here.
bool hasPrefixOf(std::string_view text, std::string_view pattern) {
    for (size_t at = 0; at < pattern.size() && pattern[at] != kAnyRun && pattern[at] != kAnyByte;
         ++at)
        if (at == text.size() || text[at] != pattern[at]) return false;
    return true;
}

// Whether the pattern is one that needs no walk; then `result` is settled.
bool shortcut(std::string_view text, std::string_view q, bool* result) {
    if (q == "*" || q == "?") {
        *result = q[0] == kAnyRun || text.size() == 1;
        return true;
    }
    if (q == "?*") {
        *result = true;
        return true;
    }
    const size_t star = q.find(kAnyRun);
    if (q.size() < 2 || star == std::string_view::npos || star != q.rfind(kAnyRun) ||
        q.find(kAnyByte) != std::string_view::npos)
        return false;
    if (star == 0) {
        *result = text.ends_with(q.substr(1));
        return true;
    }
    *result = text.starts_with(q.substr(0, star));
    return star + 1 == q.size();
}

// The walk always ends: each byte of the text is tried at most twice, since
// `retry` sends it back only once from the same place and never lower, and
// each way back to behind the last star uses up a byte of the text or a try.
bool walk(std::string_view text, std::string_view q) {
    size_t p = 0;
    size_t t = 0;
    size_t starPos = 0;
    size_t retry = 0;
    bool star = false;
    while (true) {
        for (; p < q.size() && t < text.size(); ++p) {
            if (q[p] == kAnyRun) {
                star = true;
                starPos = p;
                continue;
            }
            if (star && p == starPos + 1 && q[p] != kAnyByte) {
                // What would be tried and given up byte by byte.
                const size_t hit = text.find(q[p], t);
                if (hit == std::string_view::npos) return false;
                if (hit != t) retry = t = hit;
            }
            const char c = text[t++];
            if (q[p] == kAnyByte || q[p] == c) continue;
            if (!star) return false;
            p = starPos;
            if (t != retry) retry = t--;
        }
        if (t == text.size()) return p == q.size() || (p + 1 == q.size() && q[p] == kAnyRun);
        if (q.back() == kAnyRun) return true;
        if (!star) return false;
        p = starPos + 1;
    }
}

bool matchNormal(std::string_view text, std::string_view q) {
    bool result = false;
    return shortcut(text, q, &result) ? result : walk(text, q);
}

bool matchNonEmpty(std::string_view text, std::string_view pattern, bool noCase) {
    if (!noCase && !hasPrefixOf(text, pattern)) return false;
    if (!noCase && isNormal(pattern)) return matchNormal(text, pattern);
    BytesCopy q(pattern);
    if (!q) return false;
    if (noCase) q.lower();
    q.normalisePattern();
    if (!noCase) return matchNormal(text, q.view());
    BytesCopy lowered(text);
    if (!lowered) return false;
    lowered.lower();
    return matchNormal(lowered.view(), q.view());
}

// Asked of the pattern as it stands: `**` does not match the empty text.
bool matchesEmpty(std::string_view pattern) {
    return pattern.empty() || pattern == "*";
}

bool matchAt(const String* s, uint32_t pos, std::string_view pattern, bool noCase) {
    const std::string_view text = stringView(s);
    if (text.empty()) return matchesEmpty(pattern);
    return pos < text.size() && !pattern.empty() && matchNonEmpty(text, pattern, noCase);
}

bool matchString(const String* text, uint32_t pos, const String* pattern, bool noCase) {
    if (text == nullptr || pattern == nullptr)
        return text == nullptr && pattern == nullptr && pos == 0;
    return matchAt(text, pos, stringView(pattern), noCase);
}

bool matchText(const String* text, uint32_t pos, const char* pattern, bool noCase) {
    if (text == nullptr || pattern == nullptr)
        return text == nullptr && pattern == nullptr && pos == 0;
    return matchAt(text, pos, pattern, noCase);
}

}  // namespace

bool stringMatch(const String* text, const String* pattern) {
    return matchString(text, 0, pattern, false);
}

bool stringMatchText(const String* text, const char* pattern) {
    return matchText(text, 0, pattern, false);
}

bool stringMatchNoCase(const String* text, const String* pattern) {
    return matchString(text, 0, pattern, true);
}

bool stringMatchNoCaseText(const String* text, const char* pattern) {
    return matchText(text, 0, pattern, true);
}

bool stringMatchAt(const String* text, uint32_t pos, const String* pattern) {
    return matchString(text, pos, pattern, false);
}

bool stringMatchTextAt(const String* text, uint32_t pos, const char* pattern) {
    return matchText(text, pos, pattern, false);
}

bool stringMatchNoCaseAt(const String* text, uint32_t pos, const String* pattern) {
    return matchString(text, pos, pattern, true);
}

bool stringMatchNoCaseTextAt(const String* text, uint32_t pos, const char* pattern) {
    return matchText(text, pos, pattern, true);
}

bool stringPatternPrepare(StringPattern* pattern, std::string_view text) {
    BytesCopy q(text);
    if (pattern == nullptr || !q) return false;
    q.normalisePattern();
    pattern->takesEmpty = matchesEmpty(text);
    return stringSetView(&pattern->normal, q.view());
}

bool stringPatternMatches(const StringPattern* pattern, std::string_view text) {
    if (pattern == nullptr) return false;
    if (text.empty()) return pattern->takesEmpty;
    const std::string_view normal = stringView(&pattern->normal);
    return !normal.empty() && hasPrefixOf(text, normal) && matchNormal(text, normal);
}
