#include "strings/String.h"

#include <gtest/gtest.h>

#include <tuple>

#include "containers/Memory.h"
#include "strings/StringCompare.h"
#include "strings/StringCpp.h"
#include "strings/StringEdit.h"
#include "strings/StringFind.h"
#include "strings/StringLines.h"

using namespace std::string_view_literals;

namespace {

Owned<String> make(std::string_view text) {
    return Owned<String>(stringFromView(text));
}

std::string_view text(const Owned<String>& s) {
    return stringView(s.get());
}

TEST(String, MayBeAFieldWithoutDataAndIsThenAnEmptyText) {
    LocalString s;
    EXPECT_TRUE(stringIsEmpty(&s));
    EXPECT_STREQ("", stringText(&s));
    EXPECT_EQ(0u, stringTrim(&s));
    EXPECT_TRUE(stringUpper(&s) && stringReverse(&s) && stringPadCentre(&s, 0, 'x'));
    EXPECT_FALSE(stringErase(&s, 0));
    EXPECT_EQ(0, stringCompare(&s, make("").get()));
    LocalString t;
    EXPECT_TRUE(stringSet(&t, &s) && stringAppend(&t, &s) && stringInsert(&t, 3, &s));
    EXPECT_TRUE(stringAppendChar(&t, 0) && stringAppendText(&t, "behind"));
    EXPECT_EQ("\0behind"sv, stringView(&t));
}

TEST(String, KeepsItsTextWhenTheSourceIsAPartOfItself) {
    Owned<String> s = make("abcdefgh");
    for (int i = 0; i < 4; ++i) ASSERT_TRUE(stringAppend(s.get(), s.get()));
    ASSERT_EQ(128u, s->length);
    EXPECT_EQ("abcdefgh", text(s).substr(120));
    EXPECT_TRUE(stringAppendText(s.get(), stringText(s.get()) + 125));
    EXPECT_TRUE(stringInsert(s.get(), 1, s.get()));
    EXPECT_EQ("aabcd", text(s).substr(0, 5));
    EXPECT_TRUE(stringSetText(s.get(), stringText(s.get()) + s->length - 6));
    EXPECT_EQ("fghfgh", text(s));
    EXPECT_TRUE(stringSetSub(s.get(), s.get(), 2, 9));
    EXPECT_EQ("hfgh", text(s));
}

TEST(String, ReservationKeepsWhatFits) {
    Owned<String> s = make("abcdef");
    EXPECT_TRUE(stringReserve(s.get(), 3));
    EXPECT_EQ("abc", text(s));
    EXPECT_EQ(kStringInside, s->capacity);
    EXPECT_FALSE(stringSetLength(s.get(), kStringInside));
    char* place = stringMakeRoom(s.get(), 2);
    std::memcpy(place, "XY", 2);
    EXPECT_TRUE(stringSetLength(s.get(), 5));
    EXPECT_STREQ("abcXY", stringText(s.get()));
    EXPECT_EQ(nullptr, stringMakeRoom(s.get(), kStringEnd));
    EXPECT_FALSE(stringPadLeft(s.get(), kStringEnd, ' '));
    EXPECT_EQ("abcXY", text(s));
}

TEST(String, LeavesTheTextAloneWhenMemoryRunsOut) {
    Owned<String> s = make("as many as eighteen");
    Owned<String> other = make("more");
    bool (*const changes[])(String*, String*) = {
        [](String* text, String* more) { return stringAppend(text, more); },
        [](String* text, String* more) { return stringInsert(text, 0, more); },
        [](String* text, String*) { return stringReplaceText(text, "e", "ee") >= 0; },
        [](String* text, String*) { return stringCutAtChar(text, ' ') != nullptr; },
        [](String* text, String*) { return stringMakeLines(text, 3, true) != 0; },
        [](String* text, String*) { return stringReserve(text, 40); }};
    for (const auto change : changes) {
        memFailAfter(0, true);
        EXPECT_FALSE(change(s.get(), other.get()));
        memFailAfter(-1, false);
        EXPECT_EQ("as many as eighteen", text(s));
    }
    memFailAfter(0, true);
    EXPECT_FALSE(stringSetText(s.get(), "an assignment has lost the old text by then"));
    memFailAfter(1, true);
    EXPECT_EQ(nullptr, stringFromText("record, but no buffer"));
    memFailAfter(-1, false);
    EXPECT_TRUE(stringIsEmpty(s.get()) && stringSetText(s.get(), "again"));
}

TEST(StringEdit, ReplacesWithoutRescanningAndWithinTheRange) {
    const std::tuple<std::string_view, const char*, const char*, uint32_t, uint32_t, int64_t,
                     std::string_view>
        cases[] = {{"aaaa", "aa", "b", 1, kStringEnd, 1, "aba"},
                   {"a-b-c-d", "-", "", 2, 4, 2, "a-bcd"},
                   {"abab", "ab", "x", 0, 3, 1, "xab"},
                   {"one two one", "one", "two", 0, kStringEnd, 2, "two two two"},
                   {"a.b.c", ".", "::", 0, 4, 2, "a::b::c"},
                   {"abc", "b", "x", 9, kStringEnd, 0, "abc"},
                   {"abc", nullptr, "x", 0, kStringEnd, -1, "abc"}};
    for (const auto& [before, from, to, start, count, result, after] : cases) {
        Owned<String> s = make(before);
        EXPECT_EQ(result, stringReplaceText(s.get(), from, to, start, count)) << before;
        EXPECT_EQ(after, text(s));
    }
    Owned<String> self = make("xy");
    EXPECT_EQ(1, stringReplace(self.get(), self.get(), make("zz").get()));
    EXPECT_EQ("zz", text(self));
}

TEST(StringEdit, CutsAtTheFirstSeparator) {
    Owned<String> s = make("key==value=x");
    EXPECT_EQ("key", text(Owned<String>(stringCutAtText(s.get(), "=="))));
    EXPECT_EQ("value", text(Owned<String>(stringCutAtChar(s.get(), '='))));
    EXPECT_EQ("x", text(Owned<String>(stringCutAtChar(s.get(), '='))));
    Owned<String> rest(stringCutAtText(s.get(), "="));
    EXPECT_TRUE(rest && text(rest).empty() && text(s).empty());
}

TEST(StringEdit, ChangesBytesInPlace) {
    Owned<String> s = make(" \t 'Aa\xC4z\0Zz' \r\n"sv);
    EXPECT_EQ(3u, stringTrimRight(s.get()));
    EXPECT_EQ(3u, stringTrim(s.get()));
    EXPECT_TRUE(stringUnquote(s.get()));
    EXPECT_FALSE(stringUnquote(s.get()));
    EXPECT_TRUE(stringUpper(s.get()));
    EXPECT_EQ("AA\xC4Z\0Zz"sv, text(s));
    EXPECT_TRUE(stringLower(s.get()));
    EXPECT_EQ("aa\xC4z\0Zz"sv, text(s));
    EXPECT_EQ(1u, stringMakePrintable(s.get(), 3));
    EXPECT_EQ("aa\xC4z#0;Zz", text(s));
    EXPECT_EQ(2u, stringReplaceChar(s.get(), 'a', 0x7F));
    EXPECT_EQ(1u, stringMakePrintable(s.get(), 1, 1));
    EXPECT_EQ("\x7F#127;\xC4z#0;Zz", text(s));
    EXPECT_EQ(1u, stringRemoveChar(s.get(), 'z', 0, 8));
    EXPECT_TRUE(stringReverse(s.get(), 1, 4));
    EXPECT_EQ(
        "\x7F"
        "721#;\xC4#0;Zz",
        text(s));
    Owned<String> quote = make("\"");
    EXPECT_FALSE(stringUnquote(quote.get()));
    EXPECT_EQ(1u, stringCountChar(quote.get(), '"'));
}

TEST(StringEdit, APartBehindTheEndIsNone) {
    Owned<String> s = make("abc");
    EXPECT_EQ(nullptr, stringSub(s.get(), 3, 1));
    Owned<String> none(stringSub(s.get(), 3, 0));
    EXPECT_TRUE(none && none->length == 0 && !stringCopySub(s.get(), 3, 1, none.get()));
    EXPECT_TRUE(stringCopySub(s.get(), 0, 2, s.get()));
    EXPECT_EQ("ab", text(s));
}

TEST(StringFind, SearchesTheRangeFromBothEnds) {
    //                      0123456789
    Owned<String> s = make("abcabcabc.");
    const auto end = kStringEnd;
    EXPECT_EQ(3, stringFindText(s.get(), "abc", 1));
    EXPECT_EQ(kStringNotFound, stringFindText(s.get(), "abc", 1, 4));
    EXPECT_EQ(3, stringFindText(s.get(), "abc", 1, 5));
    EXPECT_EQ(7, stringFindCharReverse(s.get(), 'b', 2, end));
    EXPECT_EQ(kStringNotFound, stringFindChar(s.get(), '.', 0, 9));
    EXPECT_EQ(kStringNotFound, stringFindChar(s.get(), '.', 10, end));
    EXPECT_EQ(2, stringFindAnyOf(s.get(), ".c"));
    EXPECT_EQ(9, stringFindNotOf(s.get(), "cba", 4));
    EXPECT_EQ(8, stringFindLastNotOf(s.get(), "."));
    EXPECT_EQ(4, stringFindLastAnyOf(s.get(), "ab", 5));
    EXPECT_EQ(kStringNotFound, stringFindLastAnyOf(s.get(), "a", 5, 2));
}

TEST(StringCompare, OrdersSignedBytesThenLength) {
    const std::string_view ordered[] = {"",   "\x80", "\xFF",      "\0"sv,          "A",
                                        "AB", "a",    "aaaaaaaab", "aaaaaaaab\x90", "aaaaaaaabz"};
    for (size_t i = 0; i < std::size(ordered); ++i) {
        for (size_t j = 0; j < std::size(ordered); ++j) {
            const int expected = (i > j) - (i < j);
            const Owned<String> a = make(ordered[i]), b = make(ordered[j]);
            EXPECT_EQ(expected, stringCompare(a.get(), b.get())) << i << " " << j;
            EXPECT_EQ(-expected, stringCompareReverse(a.get(), b.get())) << i << " " << j;
            EXPECT_EQ(expected == 0, stringEqual(a.get(), b.get()));
        }
    }
    const Owned<String> s = make("");
    EXPECT_EQ(-1, stringCompareElements(nullptr, s.get()));
    EXPECT_EQ(1, stringCompareNoCase(s.get(), nullptr));
    EXPECT_EQ(0, stringCompareText(nullptr, nullptr));
}

TEST(StringCompare, TextFormsAreUnsignedAndEndAtTheFirstZero) {
    const Owned<String> s = make("aB\xE4\0tail"sv);
    EXPECT_EQ(0, stringCompareText(s.get(), "aB\xE4"));
    EXPECT_EQ(1, stringCompareText(s.get(), "aBz"));
    EXPECT_EQ(-1, stringCompareText(s.get(), "aB\xE4 "));
    EXPECT_EQ(0, stringCompareNoCaseText(s.get(), "Ab\xE4"));
    EXPECT_EQ(1, stringCompareNoCaseText(s.get(), "AB\xC4"));
    EXPECT_EQ(0, stringCompareAtText(s.get(), 1, "B"));
    EXPECT_EQ(0, stringCompareNoCaseAtText(s.get(), 0, "AB"));
    EXPECT_EQ(0, stringCompareAt(s.get(), 4, make("tail").get()));
    EXPECT_EQ(-1, stringCompareAt(s.get(), 5, make("tail").get()));
    EXPECT_EQ(-1, stringCompareAtText(s.get(), 99, "x"));
    EXPECT_EQ(97u * 37 * 37 + 66 * 37 - 28, stringHash(make("aB\xE4").get()));
}

TEST(StringLines, WrapsAtBlanksAndCountsOddly) {
    const std::tuple<std::string_view, uint32_t, bool, uint32_t, std::string_view> cases[] = {
        {"one two three", 14, false, 0, "one two three"},
        // A line that is exactly full is only left whole before a blank.
        {"one two three", 13, false, 2, "one two\nthree"},
        {"one two three", 7, false, 2, "one two\nthree"},
        {"one two three", 5, false, 3, "one\ntwo\nthree"},
        {"a\tb c", 3, true, 2, "a\tb\nc"},
        {"ab\ncd ef", 4, false, 3, "ab\ncd\nef"},
        {"abcdefg", 3, true, 1, "abc\ndef\ng"},
        {"abcdef", 3, true, 1, "abc\ndef\n"},
        {"abcdefg hi", 3, false, 1, "abcdefg\nhi"},
        {"abcdefg", 3, false, 1, "abcdefg"},
        {"ab", 0, true, 1, "a\nb\n"}};
    for (const auto& [before, width, breakWords, lines, after] : cases) {
        Owned<String> s = make(before);
        EXPECT_EQ(lines, stringMakeLines(s.get(), width, breakWords)) << before << " " << width;
        EXPECT_EQ(after, text(s)) << width;
    }
}

TEST(StringCpp, CopiesItsTextAndAnswersPastTheEnd) {
    using Quorel::StringCpp;
    StringCpp a("'text'");
    StringCpp b(a);
    b.unquote();
    b += '!';
    b += b;
    EXPECT_STREQ("'text'", a.c_str());
    EXPECT_EQ('!', b[100]);
    b[100] = '?';
    EXPECT_STREQ("ext!", b.substr(1, 4).c_str());
    EXPECT_TRUE(a < b && !(b < a) && b == StringCpp("text!text?"));
    StringCpp none(static_cast<const char*>(nullptr));
    EXPECT_TRUE(none.string() == nullptr && none[3] == 0);
    EXPECT_TRUE(none.isEmpty() && none == StringCpp());
    none = 'x';
    EXPECT_STREQ("x", none.c_str());
    EXPECT_STREQ("-32768", Quorel::stringCppFrom(int16_t{-32768}).c_str());
    EXPECT_EQ(UINT64_MAX, Quorel::stringCppToUInt64(Quorel::stringCppFrom(UINT64_MAX)));
}

}  // namespace
