#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "strings/StringMatch.h"

namespace {

bool match(std::string_view text, std::string_view pattern) {
    const Owned<String> s(stringFromView(text)), p(stringFromView(pattern));
    return stringMatch(s.get(), p.get());
}

TEST(PatternMatch, AcceptsWhatTheWalkReachesAndNothingElse) {
    const auto check = [](bool matches, std::initializer_list<std::string_view> rows) {
        for (const std::string_view row : rows) {
            const std::string text(row.substr(0, row.find(" / ")));
            const std::string pattern(row.substr(text.size() + 3));
            const Owned<String> s(stringFromView(text));
            EXPECT_EQ(matches, match(text, pattern)) << row;
            EXPECT_EQ(matches, stringMatchText(s.get(), pattern.c_str())) << row;
        }
    };
    check(true, {"abc / *", " / *", " / ", "a / ?", "abc / a?c", "ac / a*?c", "file.txt / *.txt",
                 "file.txt / f*.t?t", "aXbXb / a*b", "abab / a*b", "abcabd / *abd*",
                 "10:30 / ??*:?*", "xaabx / x*abx", "abc / abc", "abc / **", "abc / *?", "a / ?*",
                 "ab / ?**", "a[b] / a[b]"});
    check(false,
          {" / **", " / ?", "ab / ?", "a / a?*", "xaaab / x*aab", "xaaab / x*aab*", "1:30 / ??*:?*",
           "abc / ", "abc / abcd", "abc / ab", "a / ?**", "ab / [ab]*", "ABC / abc"});
}

TEST(PatternMatch, IgnoresCaseOnCopiesUpToAZeroByte) {
    const Owned<String> text(stringFromBytes("FILE.Txt\0zZ", 11));
    EXPECT_TRUE(stringMatchNoCaseText(text.get(), "f*.tXt?Z?"));
    EXPECT_FALSE(stringMatchNoCaseText(text.get(), "f*.tXt?zZ"));
    EXPECT_EQ("FILE.Txt", std::string(stringText(text.get())));
    const Owned<String> umlaut(stringFromText("\xC4"));
    EXPECT_FALSE(stringMatchNoCaseText(umlaut.get(), "\xE4"));
}

TEST(PatternMatch, NullsAndPositionsCountInTheEntryTestsOnly) {
    const Owned<String> text(stringFromText("abc")), empty(stringNewEmpty());
    EXPECT_TRUE(stringMatch(nullptr, nullptr) && stringMatchText(nullptr, nullptr));
    EXPECT_FALSE(stringMatchAt(nullptr, 1, nullptr));
    EXPECT_FALSE(stringMatch(nullptr, empty.get()) || stringMatch(empty.get(), nullptr));
    EXPECT_TRUE(stringMatchTextAt(text.get(), 2, "abc"));
    EXPECT_FALSE(stringMatchTextAt(text.get(), 3, "abc"));
    EXPECT_TRUE(stringMatchNoCaseTextAt(empty.get(), 5, "*"));
}

// Full search for `pattern`, the way the matcher does not work.
bool fullMatch(std::string_view text, std::string_view pattern) {
    std::vector<char> reached(text.size() + 1, 0);
    reached[0] = 1;
    for (const char c : pattern) {
        std::vector<char> next(text.size() + 1, 0);
        for (size_t t = 0; t <= text.size(); ++t) {
            if (c == '*')
                next[t] = reached[t] || (t > 0 && next[t - 1]);
            else
                next[t] = t > 0 && reached[t - 1] && (c == '?' || c == text[t - 1]);
        }
        reached = next;
    }
    return reached[text.size()] != 0;
}

std::string withoutIdleWildcards(std::string_view pattern) {
    std::string q;
    for (const char c : pattern)
        if ((c != '?' && c != '*') || q.empty() || q.back() != '*') q += c;
    return q;
}

// Every pattern on every text of a small alphabet: the walk ends, accepts only
// what a full search accepts too, and is exact where there is no way back.
TEST(PatternMatch, IsSoundOnAllShortTexts) {
    const auto wordsOf = [](std::string_view alphabet, size_t longest) {
        std::vector<std::string> words = {""};
        for (size_t i = 0; i < words.size(); ++i) {
            if (words[i].size() == longest) continue;
            for (const char c : alphabet) words.push_back(words[i] + c);
        }
        return words;
    };
    size_t refused = 0;
    const auto texts = wordsOf("ab", 6);
    for (const std::string& pattern : wordsOf("ab*?", 5)) {
        const std::string q = withoutIdleWildcards(pattern);
        const bool trailing = q.find('*') == q.size() - 1 && pattern.find("?*") == pattern.npos;
        const bool exact = pattern.find('*') == pattern.npos || trailing;
        for (const std::string& text : texts) {
            if (text.empty()) continue;
            const bool result = match(text, pattern), full = fullMatch(text, q);
            ASSERT_TRUE(full || !result) << text << " / " << pattern;
            ASSERT_TRUE(!exact || result == full) << text << " / " << pattern;
            refused += full && !result;
        }
    }
    EXPECT_GT(refused, 0u);
}

}  // namespace
