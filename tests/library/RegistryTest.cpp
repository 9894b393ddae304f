#include "registry/Registry.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <string>
#include <thread>
#include <tuple>
#include <vector>

#include "platform/files.h"
#include "platform/machine.h"
#include "platform/registry.h"
#include "strings/String.h"

namespace {

constexpr char kKey[] = "Software\\QuorelRegistryTest\\Deep\\Key";
constexpr char kTestKey[] = "Software\\QuorelRegistryTest";
constexpr char kStoreFile[] = "RegistryTest.db";

Owned<String> text(std::string_view bytes) {
    return Owned<String>(stringFromView(bytes));
}

// Where the registry is a file it is one of the test's own.
class RegistryTest : public testing::Test {
  protected:
    void SetUp() override {
        remove(kStoreFile);
        osSetEnvironment("QUOREL_REGISTRY", kStoreFile);
        osRegistryDeleteKey(kOsCurrentUser, kTestKey);
    }
    void TearDown() override {
        osRegistryDeleteKey(kOsCurrentUser, kTestKey);
        remove(kStoreFile);
    }

    RegResult get(std::string_view key, std::string_view value, std::string* found,
                  bool* isExpand = nullptr) {
        Owned<String> out(text("old"));
        RegResult result =
            regGetString(kOsCurrentUser, text(key).get(), text(value).get(), out.get(), isExpand);
        *found = stringView(out.get());
        return result;
    }
};

TEST_F(RegistryTest, RootsHaveTheirExactNames) {
    uint32_t root = 0;
    EXPECT_TRUE(regRootFromName(text("HKEY_CURRENT_CONFIG").get(), &root));
    EXPECT_EQ(0x80000005u, root);
    for (const char* name : {"hkey_local_machine", "HKEY_LOCAL_MACHIN", "HKLM", ""})
        EXPECT_FALSE(regRootFromName(text(name).get(), &root)) << name;
}

TEST_F(RegistryTest, NothingIsThereBeforeAWriteAndReadingMakesNothing) {
    std::string found;
    EXPECT_EQ(RegResult::NotFound, get(kKey, "name", &found));
    EXPECT_EQ("old", found);
    uint32_t number = 7;
    Owned<String> key(text(kKey));
    EXPECT_EQ(RegResult::NotFound,
              regGetNumber(kOsCurrentUser, key.get(), text("n").get(), &number));
    EXPECT_EQ(OsRegistryResult::NotFound, osRegistryDeleteValue(kOsCurrentUser, kKey, "n"));
    EXPECT_EQ(OsRegistryResult::NotFound, osRegistryDeleteKey(kOsCurrentUser, kKey));
    OsFileInfo info;
    EXPECT_NE(0, osFileInfo(kStoreFile, &info));
}

TEST_F(RegistryTest, TextsOfEveryTypeLoseTheirTrailingZeros) {
    using std::string_view_literals::operator""sv;
    const std::tuple<uint32_t, std::string_view, RegResult, std::string_view, bool> cases[] = {
        {kOsRegString, "plain", RegResult::Done, "plain", false},
        {kOsRegExpandString, "%x%\0"sv, RegResult::Done, "%x%", true},
        {kOsRegBinary, "a\0b\0\0"sv, RegResult::Done, "a\0b"sv, false},
        {kOsRegMultiString, "a\0b\0\0"sv, RegResult::Done, "a\0b"sv, false},
        {kOsRegString, "", RegResult::Done, "", false},
        {kOsRegBinary, "\0\0"sv, RegResult::Done, "", false},
        {kOsRegNumber, "\1\0\0\0"sv, RegResult::OtherType, "old", false},
        {11, "12345678", RegResult::OtherType, "old", false}};
    Owned<String> key(text(kKey));
    for (const auto& [type, bytes, result, wanted, wantedExpand] : cases) {
        ASSERT_EQ(RegResult::Done, regSetValue(kOsCurrentUser, key.get(), text("v").get(), type,
                                               bytes.data(), bytes.size()));
        std::string found;
        bool isExpand = false;
        EXPECT_EQ(result, get(kKey, "v", &found, &isExpand)) << type;
        EXPECT_EQ(wanted, found) << type;
        EXPECT_EQ(wantedExpand, isExpand) << type;
    }
}

TEST_F(RegistryTest, NamesIgnoreCaseAndLongValuesComeWhole) {
    const std::string large(100000, 'x');
    Owned<String> key(text(kKey));
    Owned<String> other(text("SOFTWARE\\quorelREGISTRYtest\\deep\\KEY\\"));
    const auto set = [](const Owned<String>& where, const char* name, std::string_view value) {
        return regSetString(kOsCurrentUser, where.get(), text(name).get(), text(value).get());
    };
    ASSERT_EQ(RegResult::Done, set(key, "Name", "first"));
    ASSERT_EQ(RegResult::Done, set(other, "NAME", large));
    std::string found;
    EXPECT_EQ(RegResult::Done, get(kKey, "name", &found));
    EXPECT_EQ(large, found);
    EXPECT_EQ(RegResult::NotFound, get("Software\\QuorelRegistryTest\\Deep", "name", &found));
    EXPECT_EQ(RegResult::Failed, get("\\Software", "name", &found));
    const uint32_t wide = 0xfedcba98;
    EXPECT_EQ(RegResult::Done, regSetNumber(kOsCurrentUser, key.get(), text("n").get(), wide));
    uint32_t number = 0;
    EXPECT_EQ(RegResult::Done, regGetNumber(kOsCurrentUser, key.get(), text("N").get(), &number));
    EXPECT_EQ(wide, number);
    EXPECT_EQ(RegResult::OtherType,
              regGetNumber(kOsCurrentUser, key.get(), text("name").get(), &number));
}

TEST_F(RegistryTest, SubKeysAreListedAndTreesDeleted) {
    std::string base = kTestKey;
    for (const char* name : {"\\b\\below", "\\a", "\\C"}) {
        ASSERT_EQ(OsRegistryResult::Done,
                  osRegistrySet(kOsCurrentUser, base + name, "v", kOsRegString, "x"));
    }
    std::vector<std::string> names;
    EXPECT_EQ(OsRegistryResult::Done, osRegistrySubKeys(kOsCurrentUser, kTestKey, &names));
    EXPECT_EQ((std::vector<std::string>{"a", "b", "C"}), names);
    EXPECT_EQ(OsRegistryResult::Done, osRegistryDeleteValue(kOsCurrentUser, base + "\\a", "V"));
    EXPECT_EQ(OsRegistryResult::Failed, osRegistryDeleteValue(kOsCurrentUser, base + "\\a", "V"));
    EXPECT_EQ(OsRegistryResult::Done, osRegistryDeleteKey(kOsCurrentUser, base + "\\b"));
    std::string found;
    EXPECT_EQ(RegResult::NotFound, get(base + "\\b\\below", "v", &found));
    EXPECT_EQ(RegResult::Done, get(base + "\\c", "v", &found));
    EXPECT_EQ(OsRegistryResult::Failed, osRegistryDeleteKey(kOsCurrentUser, ""));
}

TEST_F(RegistryTest, SettingsLieBelowTheProductsKey) {
    Owned<String> key(text("SOFTWARE\\Quorel\\version6\\RegistryTest"));
    Owned<String> out(text("old"));
    EXPECT_EQ(RegResult::NotFound, getConfigString("RegistryTest", "s", out.get()));
    regSetString(kOsLocalMachine, key.get(), text("s").get(), text("value").get());
    regSetNumber(kOsLocalMachine, key.get(), text("n").get(), 80);
    EXPECT_EQ(RegResult::Done, getConfigString("RegistryTest", "s", out.get()));
    EXPECT_EQ("value", stringView(out.get()));
    uint32_t number = 0;
    EXPECT_EQ(RegResult::Done, getConfigNumber("RegistryTest", "n", &number));
    EXPECT_EQ(80u, number);
    EXPECT_EQ(RegResult::Arguments, getConfigString("RegistryTest", nullptr, out.get()));
    EXPECT_EQ(RegResult::NotFound, getConfigString(nullptr, "s", out.get()));
    osRegistryDeleteKey(kOsLocalMachine, "SOFTWARE\\Quorel\\version6\\RegistryTest");
}

TEST_F(RegistryTest, WritersAndReadersDoNotDisturbEachOther) {
    constexpr int kWriters = 3;
    constexpr int kRounds = 15;
    std::vector<std::thread> writers;
    for (int writer = 0; writer < kWriters; ++writer) {
        writers.emplace_back([writer] {
            for (int round = 0; round < kRounds; ++round) {
                std::string name = std::to_string(writer) + "-" + std::to_string(round);
                EXPECT_EQ(OsRegistryResult::Done,
                          osRegistrySet(kOsCurrentUser, kKey, name, kOsRegString, name));
                uint32_t type;
                std::string data;
                EXPECT_EQ(OsRegistryResult::Done,
                          osRegistryGet(kOsCurrentUser, kKey, name, &type, &data));
                EXPECT_EQ(name, data.c_str());  // a system may add a terminator
            }
        });
    }
    for (std::thread& writer : writers) writer.join();
    std::string found;
    EXPECT_EQ(RegResult::Done, get(kKey, "0-0", &found));
}

}  // namespace
