#include "streams/BasicStream.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <limits>
#include <string>

#include "containers/Memory.h"
#include "streams/StringStream.h"
#include "strings/String.h"

using namespace Quorel;

namespace {

std::string textOf(const StringCpp& text) {
    return std::string(stringView(text.string()));
}

// Writes the value, and checks its tag, its text, and that it reads back.
template <typename T>
void expectItem(T value, char tag, const std::string& text) {
    StringStream stream;
    stream << value;
    EXPECT_EQ(tag, stream.peek());
    EXPECT_EQ(text, textOf(stream.str()));
    T read{};
    EXPECT_EQ(kStreamRead, streamRead(&stream, &read));
    EXPECT_EQ(value, read);
    EXPECT_EQ(kStreamAny, stream.peek());
    EXPECT_EQ(kStreamEnd, streamRead(&stream, &read));
    EXPECT_EQ(T{}, read);
}

}  // namespace

TEST(BasicStream, KeepsEachTypeAsTextUnderItsTag) {
    expectItem(true, 'b', "\1");
    expectItem(false, 'b', std::string(1, '\0'));
    expectItem<int8_t>(-3, 'c', "\xFD");
    expectItem<uint8_t>(0, 'C', std::string(1, '\0'));
    expectItem<int16_t>(INT16_MIN, 'i', "-32768");
    expectItem<uint16_t>(UINT16_MAX, 'I', "65535");
    expectItem<int32_t>(INT32_MIN, 'l', "-2147483648");
    expectItem<uint32_t>(UINT32_MAX, 'L', "4294967295");
    expectItem<int64_t>(INT64_MIN, 'v', "-9223372036854775808");
    expectItem<uint64_t>(UINT64_MAX, 'V', "18446744073709551615");
    expectItem(3.25, 'f', "3.25");
    expectItem(2.0, 'f', "2");
    StringStream stream;
    double read = 0;
    stream << 1.5 >> read;
    EXPECT_EQ(1, read) << "the trimmer loses a digit";
}

TEST(BasicStream, SkipsAnItemOfAnotherType) {
    StringStream stream;
    stream << int32_t{5} << "text" << int32_t{7};
    uint32_t number = 9;
    EXPECT_EQ(kStreamOtherType, streamRead(&stream, &number));
    EXPECT_EQ(0u, number);
    EXPECT_EQ('s', stream.peek());
    int32_t same = 9;
    EXPECT_EQ(kStreamOtherType, streamRead(&stream, &same));
    StringCpp text("old");
    EXPECT_EQ(kStreamOtherType, streamRead(&stream, &text));
    EXPECT_TRUE(text.isEmpty());
    EXPECT_EQ(kStreamEnd, streamRead(&stream, &text));
}

TEST(BasicStream, ReadsTextOfBothTagsAndAnyType) {
    StringStream stream;
    StreamItem item;
    item.tag = kStreamOldText;
    item.value = "old";
    EXPECT_TRUE(stream.pushItem(item));
    const Owned<String> plain(stringFromBytes("a\0b", 3));
    stream << plain.get() << StringCpp("wrapped") << static_cast<const char*>(nullptr) << true;
    StringCpp text;
    const Owned<String> target(stringNewEmpty());
    stream >> text >> target.get();
    EXPECT_EQ("old", textOf(text));
    EXPECT_EQ(std::string("a\0b", 3), stringView(target.get()));
    EXPECT_EQ(kStreamRead, streamReadTagged(&stream, kStreamOldText, &text));
    EXPECT_EQ("wrapped", textOf(text));
    EXPECT_EQ(kStreamRead, streamRead(&stream, &text));
    EXPECT_TRUE(text.isEmpty());
    EXPECT_EQ(kStreamRead, streamReadTagged(&stream, kStreamAny, &text));
    EXPECT_EQ("\1", textOf(text));
}

TEST(BasicStream, CarriesRecordsAndTimes) {
    const StreamRecord record{{1, 2, 3, 4, 5, 6, 7, UINT32_MAX}, 200};
    uint64_t now = 3900000000000;
    StringStream stream;
    stream << record << StreamTime{&now};
    std::string tags;
    StringStream copy = stream;
    for (StreamItem item; copy.getItem(&item, true);) tags += item.tag;
    EXPECT_EQ("llllllllcV", tags);

    StreamRecord read{};
    uint64_t then = 0;
    stream >> read >> StreamTime{&then};
    EXPECT_EQ(UINT32_MAX, read.fields[7]);
    EXPECT_EQ(200, read.last);
    EXPECT_EQ(now, then);

    StringStream broken;
    broken << int32_t{8} << int32_t{9} << "end";
    StreamRecord partial{{0, 0, 5, 5}, 1};
    EXPECT_EQ(kStreamOtherType, streamRead(&broken, &partial));
    EXPECT_EQ(9u, partial.fields[1]);
    EXPECT_EQ(0u, partial.fields[2]);
    EXPECT_EQ(5u, partial.fields[3]) << "the read has stopped before it";
}

TEST(BasicStream, ACopyBeginsAtTheFirstItem) {
    StringStream stream;
    stream << "a" << int32_t{1} << "b";
    StringCpp text;
    stream >> text;
    StringStream copy(stream);
    StringStream assigned;
    assigned << "gone";
    assigned = stream;
    EXPECT_EQ('l', stream.peek());
    for (StringStream* each : {&copy, &assigned}) {
        EXPECT_EQ('s', each->peek());
        EXPECT_EQ("a1b", textOf(each->str()));
        EXPECT_EQ(3u, each->count());
    }
}

TEST(BasicStream, SaysWhenAnItemCannotBeStored) {
    bool stored = false;
    for (int n = 0; !stored && n < 100; ++n) {
        StringStream stream;
        memFailAfter(n, false);
        stored = streamWrite(&stream, uint64_t{42}) && streamWrite(&stream, "text");
        memFailAfter(-1, false);
        EXPECT_EQ(stored ? 2u : stream.count() % 2, stream.count()) << n;
    }
    EXPECT_TRUE(stored);
    EXPECT_FALSE(streamWrite(nullptr, "text"));
}
