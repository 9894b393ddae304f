#include "strings/StringFormat.h"

#include <gtest/gtest.h>

#include <limits>
#include <string>

namespace {

template <typename... Args>
std::string format(const char* text, const Args&... args) {
    const Owned<String> s(stringFormatNew(text, args...));
    return s ? std::string(stringView(s.get())) : "no memory";
}

TEST(StringFormat, WritesEachLetter) {
    const Owned<String> string(stringFromText("abc"));
    EXPECT_EQ("-5 -5 4294967291 fffffffb FFFFFFFB", format("%i %d %u %x %X", -5, -5, -5, -5, -5));
    EXPECT_EQ("-1", format("%i", 4294967295u));
    EXPECT_EQ("-9223372036854775808 18446744073709551615",
              format("%I %U", std::numeric_limits<int64_t>::min(), UINT64_MAX));
    EXPECT_EQ("x|abc|abc|abc|abc", format("%c|%s|%S|%s|%S", 'x', "abc", "abc", string, string));
    EXPECT_EQ("ab", format("%s", std::string_view("abcd").substr(0, 2)));
    EXPECT_EQ("2.500 2.500000 2.500000 2.5e+01", format("%.3f %.0f %.f %.1e", 2.5, 2.5, 2.5, 25));
    EXPECT_EQ("1.000000E+300 1e+300 1e+300 0.0001",
              format("%E %g %G %g", 1e300, 1e300, 1e300, 1e-4));
    EXPECT_EQ("1.235e+05", format("%.4g", 123456.0));
}

TEST(StringFormat, DoublesAreTheSameOnAllSystemsAndCutAtFortyBytes) {
    const double inf = std::numeric_limits<double>::infinity();
    const double nan = std::numeric_limits<double>::quiet_NaN();
    EXPECT_EQ("nan nan inf -inf", format("%f %g %e %f", nan, -nan, inf, -inf));
    EXPECT_EQ("1000000000000000052504760255204420248704", format("%f", 1e300));
    EXPECT_EQ("0.33333333333333331482961625624739099293", format("%.999999999999f", 1 / 3.0));
    EXPECT_EQ("-0.000000", format("%f", -0.0));
}

TEST(StringFormat, FillsInFrontOnly) {
    EXPECT_EQ("*****abc", format("%'*'8s", "abc"));
    EXPECT_EQ("   42|00042|42", format("%05i|%'0'5u|%1u", 42, 42, 42));
    EXPECT_EQ("000-5", format("%'0'5i", -5));
    EXPECT_EQ("    x", format("%5c", 'x'));
    EXPECT_EQ("     1.5", format("%8.1f", 1.5));
    EXPECT_EQ("'''7", format("%'''4i", 7));
    // A quote that begins no fill is the letter itself.
    EXPECT_EQ("'x5i 1", format("%'x5i %i", 1));
    EXPECT_EQ("<NULL><NULL>",
              format("%8S%8s", static_cast<String*>(nullptr), static_cast<char*>(nullptr)));
}

TEST(StringFormat, OtherBytesStandForThemselvesAndTakeNoArgument) {
    EXPECT_EQ("100% q 1", format("100%% %q %i", 1));
    EXPECT_EQ("a", format("a%5", 1));
    EXPECT_EQ("a'", format("a%'", 1));
    EXPECT_EQ("1 and  end", format("%i and %S end", 1));
}

TEST(StringFormat, ALetterThatDoesNotFitReadsNothingWild) {
    const Owned<String> string(stringFromText("txt"));
    for (const char* letter : {"%i", "%u", "%I", "%U", "%x", "%c", "%f", "%g", "%s", "%S"}) {
        EXPECT_EQ("txt", format(letter, string)) << letter;
        EXPECT_EQ("txt", format(letter, "txt")) << letter;
        EXPECT_EQ("<NULL>", format(letter, nullptr)) << letter;
        EXPECT_EQ("", format(letter)) << letter;
    }
    EXPECT_EQ("-7 1.5 7 A", format("%s %S %s %s", -7, 1.5, 7u, 'A'));
    EXPECT_EQ("3 -3 3.000000 A", format("%i %i %f %c", 3.9, -3.9, 3, 65));
    EXPECT_EQ("5000000000 -5000000000",
              format("%u %i", uint64_t{5000000000}, -int64_t{5000000000}));
    EXPECT_EQ("9223372036854775808 0", format("%s %i", uint64_t{1} << 63, 0.0));
}

TEST(StringFormat, AnArgumentMayBeTheStringItself) {
    Owned<String> s(stringFromText("self"));
    EXPECT_TRUE(stringAppendFormat(s.get(), "[%20S%S]", s, s));
    EXPECT_STREQ("self[                selfself]", stringText(s.get()));
    EXPECT_TRUE(stringFormat(s.get(), "<%s>", stringText(s.get()) + 25));
    EXPECT_STREQ("<self]>", stringText(s.get()));
    EXPECT_TRUE(stringInsertFormat(s.get(), 1, "%S%i", s, 1));
    EXPECT_STREQ("<<self]>1self]>", stringText(s.get()));
}

}  // namespace
