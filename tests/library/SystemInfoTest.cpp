#include "system/SystemInfo.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <string>
#include <tuple>

#include "containers/Vector.h"
#include "platform/clock.h"
#include "platform/machine.h"
#include "platform/registry.h"
#include "registry/Registry.h"
#include "strings/String.h"
#include "system/WindowsRelease.h"

namespace {

constexpr char kNetworkKey[] = "SOFTWARE\\Quorel\\version6\\network";
constexpr char kStoreFile[] = "SystemInfoTest.db";

std::string made(String* result) {
    Owned<String> owned(result);
    return result == nullptr ? "<none>" : std::string(stringView(owned.get()));
}

Owned<String> text(std::string_view bytes) {
    return Owned<String>(stringFromView(bytes));
}

std::string folder(const char* name) {
    return made(sysGetSpecialFolder(text(name).get()));
}

bool holds(const Vector* names, std::string_view name) {
    for (uint32_t i = 0; i < vectorSize(names); ++i)
        if (stringView(static_cast<String*>(vectorGet(names, i))) == name) return true;
    return false;
}

TEST(SystemInfo, WindowsSystemsHaveTheirNames) {
    // platform, major, minor, product, suite, service pack, release 2
    const std::tuple<OsWindowsVersion, const char*, uint32_t> cases[] = {
        {{2, 3, 51, 1, 0, 5, false}, "WindowsNT3_SP5", 300},
        {{2, 4, 0, 1, 0, 0, false}, "WindowsNT4", 400},
        {{2, 5, 0, 1, 0, 4, false}, "Windows2000", 500},
        {{2, 5, 1, 1, 0x200, 3, false}, "WindowsXP", 510},
        {{2, 5, 2, 1, 0, 2, true}, "WindowsXPx64_SP2", 520},
        {{2, 5, 2, 3, 0x200, 1, true}, "WindowsServer2003_R2_Home_SP1", 520},
        {{2, 5, 2, 2, 0, 0, false}, "WindowsNTDomainController", 520},
        {{2, 5, 2, 3, 0, 1, false}, "WindowsServer2003_SP1", 520},
        {{2, 5, 2, 7, 0, 0, false}, "Windows<Unknown>", 520},
        {{2, 5, 3, 1, 0, 1, false}, "Windows53", 503},
        {{2, 6, 1, 1, 0, 1, false}, "WindowsVista_SP1", 600},
        {{2, 6, 0, 3, 0, 0, false}, "WindowsServer_Longhorn", 600},
        {{2, 10, 0, 1, 0, 1, false}, "Windows100", 0},
        {{1, 4, 10, 1, 0, 0, false}, "<none>", 0}};
    for (const auto& [version, name, number] : cases) {
        EXPECT_EQ(name, made(windowsReleaseName(version)));
        EXPECT_EQ(number, windowsReleaseNumber(version)) << name;
    }
}

TEST(SystemInfo, TheDomainIsCutOffItsHost) {
    EXPECT_EQ("pc1", made(sysCutDomain("pc1.corp", "corp")));
    EXPECT_EQ("pc1.corp", made(sysCutDomain("pc1.corp", "other")));
    EXPECT_EQ("pc1.corp", made(sysCutDomain("pc1.corp", "CORP")));
    EXPECT_EQ("corp", made(sysCutDomain("corp", "corp")));
    EXPECT_EQ("", made(sysCutDomain("xcorp", "corp")));
}

TEST(SystemInfo, FactsOfThisMachine) {
    EXPECT_NE("<none>", made(sysGetOsName()));
    EXPECT_NE("<none>", made(sysGetComputerName()));
    EXPECT_NE("<none>", made(sysGetUser()));
    EXPECT_EQ("amd64", made(sysGetArch()));
    EXPECT_TRUE(sysGetOsBits() == 32 || sysGetOsBits() == 64);
    std::string version = made(sysGetOsVersionText());
    if (version != "<none>") {
        EXPECT_EQ(std::string::npos, version.find_first_not_of("0123456789."));
    }
    EXPECT_EQ(')', made(sysGetLanguage()).back());
    sysReleaseCache();
    EXPECT_EQ("amd64", made(sysGetArch()));
}

TEST(SystemInfo, TheLanguageIsThatOfTheLocale) {
    std::string locale;
    if (!osLocale(&locale)) return;  // a registry of keyboards, which may hold anything
    constexpr const char* kCases[][2] = {{"de_AT.ISO-8859-15@euro", "de_AT(ISO-8859-15)"},
                                         {"C", "C(unknown)"},
                                         {"@euro", "unknown(unknown)"}};
    for (const auto& [name, language] : kCases) {
        osSetEnvironment("LC_ALL", name);
        EXPECT_EQ(language, made(sysGetLanguage()));
    }
}

TEST(SystemInfo, SpecialFoldersEndInASeparator) {
    for (const char* name : {"fonts", "programs", "system", "windows", "users", "startmenu"}) {
        std::string path = folder(name);
        ASSERT_NE("<none>", path) << name;
        EXPECT_NE(std::string::npos, std::string("\\/").find(path.back())) << path;
    }
    EXPECT_EQ(folder("programs"), folder("ProgramFiles"));
    EXPECT_EQ(folder("windows"), folder("SYSTEMROOT"));
    EXPECT_EQ("<none>", folder("font"));
    EXPECT_EQ("<none>", folder(""));
    EXPECT_EQ(nullptr, sysGetSpecialFolder(nullptr));
}

TEST(SystemInfo, GroupsAndTheirMembersAgree) {
    Vector* groups = sysGetGroups();
    if (groups == nullptr) return;  // a machine without a group database
    Owned<String> user(sysGetUser());
    Vector* own = sysGetUserGroups(user.get());
    ASSERT_NE(nullptr, own);
    for (uint32_t i = 0; i < vectorSize(own); ++i) {
        const String* group = static_cast<String*>(vectorGet(own, i));
        EXPECT_TRUE(holds(groups, stringView(group)));
        Vector* members = sysGetGroupMembers(group);
        EXPECT_TRUE(holds(members, stringView(user.get())));
        sysDestroyNames(&members);
    }
    EXPECT_FALSE(holds(own, "no such group here"));
    sysDestroyNames(&own);
    sysDestroyNames(&groups);
    EXPECT_EQ(nullptr, groups);
}

class MachineSettings : public testing::Test {
  protected:
    void SetUp() override {
        remove(kStoreFile);
        osSetEnvironment("QUOREL_REGISTRY", kStoreFile);
        osRegistryDeleteKey(kOsLocalMachine, kNetworkKey);
        sysReleaseCache();
    }
    void TearDown() override {
        osRegistryDeleteKey(kOsLocalMachine, kNetworkKey);
        remove(kStoreFile);
        osVirtualClock = nullptr;
        sysReleaseCache();
    }
    void setText(const char* value, std::string_view bytes) {
        EXPECT_EQ(RegResult::Done, regSetString(kOsLocalMachine, text(kNetworkKey).get(),
                                                text(value).get(), text(bytes).get()));
    }
    void setNumber(const char* value, uint32_t number) {
        EXPECT_EQ(RegResult::Done, regSetNumber(kOsLocalMachine, text(kNetworkKey).get(),
                                                text(value).get(), number));
    }
};

TEST_F(MachineSettings, RolesAreExactWords) {
    EXPECT_EQ(MachineRole::None, sysGetRole());
    const std::pair<const char*, MachineRole> cases[] = {
        {"none", MachineRole::None},   {"host", MachineRole::Host},
        {"group", MachineRole::Group}, {"subsite", MachineRole::Subsite},
        {"site", MachineRole::Site},   {"supersite", MachineRole::Supersite},
        {"Host", MachineRole::None},   {"hos", MachineRole::None}};
    for (const auto& [word, role] : cases) {
        setText("role", word);
        EXPECT_EQ(role, sysGetRole()) << word;
    }
    setNumber("role", 1);
    EXPECT_EQ(MachineRole::None, sysGetRole());
    EXPECT_STREQ("supersite", sysRoleName(MachineRole::Supersite));
}

TEST_F(MachineSettings, TheRouterNeedsBothItsSettings) {
    Owned<String> host(stringNewEmpty());
    uint32_t port = 0;
    EXPECT_FALSE(sysGetRouter(host.get(), &port));
    setNumber("router-port", 5001);
    EXPECT_FALSE(sysGetRouter(host.get(), &port));
    EXPECT_EQ(5001u, port);
    setText("router-host", "gate");
    EXPECT_TRUE(sysGetRouter(host.get(), &port));
    EXPECT_EQ("gate", stringView(host.get()));
}

TEST_F(MachineSettings, TheLaptopFlagIsReadAgainAfterFiveMinutes) {
    OsVirtualClock clock;
    clock.ticks = 1000;
    osVirtualClock = &clock;
    EXPECT_FALSE(sysIsLaptop());
    setNumber("laptop", 1);
    EXPECT_TRUE(sysIsLaptop()) << "a failed look is not remembered";
    setNumber("laptop", 0);
    clock.advance(299999);
    EXPECT_TRUE(sysIsLaptop());
    clock.advance(1);
    EXPECT_FALSE(sysIsLaptop());
    setNumber("laptop", 2);
    clock.advance(300000);
    EXPECT_FALSE(sysIsLaptop()) << "only 1 means yes";
}

}  // namespace
