#include "strings/StringNumbers.h"

#include <gtest/gtest.h>

#include <charconv>
#include <cmath>
#include <limits>
#include <random>
#include <string>
#include <tuple>

#include "containers/List.h"
#include "containers/Memory.h"
#include "containers/Set.h"
#include "containers/Vector.h"
#include "strings/StringSplit.h"

namespace {

std::string numberText(double value) {
    char buffer[kNumberTextMax];
    return std::string(buffer, numberToText(value, buffer));
}

// The exact expansion judges the scaled arithmetic, with ties and neighbours of
// ties among the cases.
TEST(StringNumbers, ADoubleIsRoundedAsTheExactDecimalExpansion) {
    std::mt19937_64 random(20);
    for (int i = 0; i < 200000; ++i) {
        double value = static_cast<double>(random() % 4000001) / 512.0 * 1.953125e-6;
        if (i % 2 == 1) value = std::ldexp(static_cast<double>(random()), -30 - i % 70);
        if (i % 4 == 2) value = static_cast<double>(random() % 4000001) / 512.0;
        if (i % 3 == 1) value = std::nextafter(-value, 0);
        char buffer[64];
        const auto fixed = std::chars_format::fixed;
        std::string expected(buffer, std::to_chars(buffer, buffer + 64, value, fixed, 8).ptr);
        expected.erase(expected.find_last_not_of('0') + 1);
        if (expected.back() == '.') expected.pop_back();
        ASSERT_EQ(expected, numberText(value));
    }
}

TEST(StringNumbers, ADoubleBecomesAWholeNumberWithoutSurprise) {
    const double nan = std::numeric_limits<double>::quiet_NaN();
    EXPECT_EQ(-1, numberToInt32(-1.99));
    EXPECT_EQ(INT32_MAX, numberToInt32(2147483647.9));
    EXPECT_EQ(INT32_MIN, numberToInt32(-2147483648.9));
    for (const double beyond : {2147483648.0, -2147483649.0, 1e300, -1e300, nan})
        EXPECT_EQ(INT32_MIN, numberToInt32(beyond)) << beyond;
    for (const double beyond : {9223372036854775808.0, -1e19, nan})
        EXPECT_EQ(INT64_MIN, numberToInt64(beyond)) << beyond;
    EXPECT_EQ(UINT32_MAX, numberToUInt32(-1));
    EXPECT_EQ(4000000000u, numberToUInt32(4e9));
    EXPECT_EQ(1u, numberToUInt32(4294967297.0));
    EXPECT_EQ(0u, numberToUInt32(nan));
}

TEST(StringNumbers, TextBecomesADoubleByDigitsPointAndExponentOnly) {
    const std::string zeros(400, '0');
    const auto reads = [](double expected, std::initializer_list<std::string> texts) {
        for (const std::string& text : texts) EXPECT_EQ(expected, textToDouble(text)) << text;
    };
    reads(0, {"0x10", "inf", "nan", "-", ".", "+-1", "- 1", ".e1", "1e-400", "0." + zeros + "1",
              "1e-99999999999999999999"});
    reads(1, {"1e", "1e+", "1e-x", "1,5", "1" + zeros + "e-400", "0." + zeros + "1e401"});
    reads(HUGE_VAL, {"1e400", "1e99999999999999999999", "1" + zeros, "1" + zeros + "e -999",
                     "0." + zeros + "1e801"});
    reads(-HUGE_VAL, {"-1e400"});
    reads(12, {" \t\r\n\v\f12", "+.12E2x", "1.2e1.5"});
    reads(-3.25, {"-3.25.1", "-325e-2"});
    reads(5e-324, {"4.9e-324"});
    reads(1.7976931348623157e308, {"179769313486231570" + std::string(291, '0') + ".00001"});
    reads(9007199254740992, {"9007199254740993"});
    reads(9007199254740994, {"9007199254740993." + zeros + "1"});
    EXPECT_TRUE(std::signbit(textToDouble("-0")) && !std::signbit(textToDouble("-x")));
    EXPECT_EQ(0, stringToDouble(nullptr));
}

TEST(StringNumbers, WholeNumbersStopAtTheLimitsOf64BitsAndAreCutTo32) {
    const std::tuple<const char*, int32_t, uint32_t, int64_t, uint64_t> cases[] = {
        {"", 0, 0, 0, 0},
        {"-12x", -12, 4294967284u, -12, 0},
        {" +7", 7, 7, 0, 0},
        {"2147483648", INT32_MIN, 2147483648u, 2147483648, 2147483648u},
        {"4294967297", 1, 1, 4294967297, 4294967297u},
        {"9223372036854775813", -1, 5, INT64_MIN + 5, 9223372036854775813u},
        {"-9223372036854775813", 0, 4294967291u, INT64_MAX - 4, 0},
        {"18446744073709551615", -1, UINT32_MAX, -1, UINT64_MAX},
        {"18446744073709551617", -1, UINT32_MAX, 1, 1},
        {"-18446744073709551617", 0, UINT32_MAX, -1, 0}};
    for (const auto& [text, signed32, unsigned32, signed64, unsigned64] : cases) {
        EXPECT_EQ(signed32, textToInt32(text)) << text;
        EXPECT_EQ(unsigned32, textToUInt32(text)) << text;
        EXPECT_EQ(signed64, textToInt64(text)) << text;
        EXPECT_EQ(unsigned64, textToUInt64(text)) << text;
    }
}

TEST(StringNumbers, TheStreamsTrimmerLosesASingleDecimal) {
    const std::pair<const char*, const char*> cases[] = {{"3.250000", "3.25"}, {"2.000000", "2"},
                                                         {"1.500000", "1"},    {"1.5", "1.5"},
                                                         {"100", "100"},       {"10.", "10"},
                                                         {".000", "0"},        {".500", "0"},
                                                         {"-0.000", "-0"},     {"0.0010", "0.001"},
                                                         {"1.50e0", "1.50e0"}, {"-.", "-."},
                                                         {"nan", "nan"},       {"", ""}};
    for (const auto& [before, after] : cases) {
        Owned<String> s(stringFromText(before));
        stringTrimNumber(s.get());
        EXPECT_STREQ(after, stringText(s.get())) << before;
    }
}

TEST(StringNumbers, HexadecimalOfNumbersAndTexts) {
    EXPECT_STREQ("0", stringText(Owned<String>(stringFromHex(0, true)).get()));
    EXPECT_STREQ("deadbeef", stringText(Owned<String>(stringFromHex(0xDEADBEEF, false)).get()));
    Owned<String> s(stringFromBytes("\x0A\xFF\0", 3));
    EXPECT_TRUE(stringToHex(s.get(), s.get()));
    EXPECT_STREQ("0AFF00", stringText(s.get()));
    EXPECT_TRUE(stringByteToHex(0xB7, s.get()));
    EXPECT_STREQ("B7", stringText(s.get()));
}

TEST(StringSplit, ASeparatorEndsAnItemAndOnlyAnEmptyTailIsNone) {
    const std::pair<const char*, std::string> cases[] = {
        {"a,,b,", "[a][][b]"}, {"", ""}, {",", "[]"}, {"ab", "[ab]"}, {",a", "[][a]"}};
    for (const auto& [before, expected] : cases) {
        const Owned<String> s(stringFromText(before));
        List* list = stringSplitToList(s.get(), ',');
        Vector* vector = stringSplitToVector(s.get(), ',');
        std::string ofList, ofVector;
        const auto shown = [](void* item) {
            return std::string("[") + stringText(static_cast<String*>(item)) + "]";
        };
        for (ListNode* n = listFirstNode(list); n != nullptr; n = listNextNode(list, n))
            ofList += shown(n->value);
        for (uint32_t i = 0; i < vectorSize(vector); ++i) ofVector += shown(vectorGet(vector, i));
        EXPECT_EQ(expected, ofList);
        EXPECT_EQ(expected, ofVector);
        listDestroyWith(&list, stringDestroyElement);
        vectorDestroyWith(&vector, stringDestroyElement);
    }
}

TEST(StringSplit, NumberFormsBoxAndTheSetOrders) {
    const Owned<String> s(stringFromText("10;9;;9223372036854775813;9223372036854775813"));
    const auto number = [](void* item) { return *static_cast<uint32_t*>(item); };
    Vector* vector = stringSplitToNumberVector(s.get(), ';');
    ASSERT_EQ(5u, vectorSize(vector));
    EXPECT_EQ(10u, number(vectorGet(vector, 0)));
    EXPECT_EQ(5u, number(vectorGet(vector, 4)));
    vectorDestroyWith(&vector, keyDestroy);
    List* list = stringSplitToNumberList(s.get(), ';');
    EXPECT_EQ(5u, number(listLastNode(list)->prev->value));
    EXPECT_EQ(UINT32_MAX, number(listLastNode(list)->value));
    listDestroyWith(&list, keyDestroy);
    Set* set = stringSplitToNumberSet(s.get(), ';');
    std::string ordered;
    for (SetIterator* at = setIterFirst(set); at != nullptr; setIterNext(&at))
        ordered += std::to_string(number(setIterValue(at))) + " ";
    EXPECT_EQ("0 5 5 9 10 ", ordered);
    setDestroyWith(&set, keyDestroy);
}

}  // namespace
