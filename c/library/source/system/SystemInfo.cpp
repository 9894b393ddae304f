#include "system/SystemInfo.h"

#include <string>

#include "platform/clock.h"
#include "platform/machine.h"
#include "registry/Registry.h"
#include "strings/String.h"
#include "strings/StringCompare.h"
#include "strings/StringNumbers.h"
#include "system/WindowsRelease.h"

namespace {

constexpr char kNetworkSettings[] = "network";
constexpr uint64_t kLaptopCacheMilliseconds = 300000;

// What does not change while the process runs.
struct MachineFacts {
    bool known = false;
    String* architecture = nullptr;
    String* osName = nullptr;
    String* osVersionText = nullptr;
    uint32_t osVersion = 0;
};
MachineFacts facts;

struct LaptopFlag {
    bool known = false;
    bool isLaptop = false;
    uint64_t readAt = 0;
};
LaptopFlag laptop;

struct LocalNames {
    String* group = nullptr;
    String* subsite = nullptr;
    String* site = nullptr;
};
LocalNames localNames;

const MachineFacts& machineFacts() {
    if (facts.known) return facts;
    facts.known = true;
    facts.architecture = stringFromView(osArchitecture());
    OsRelease release;
    OsWindowsVersion version;
    if (osRelease(&release)) {
        facts.osName = stringFromView(release.name);
        if (!release.version.empty()) facts.osVersionText = stringFromView(release.version);
        facts.osVersion = textToUInt32(release.version);
    } else if (osWindowsVersion(&version)) {
        facts.osName = windowsReleaseName(version);
        facts.osVersion = windowsReleaseNumber(version);
        facts.osVersionText = stringFromUInt32(facts.osVersion);
    }
    return facts;
}

// ORDER machine-roles
constexpr const char* kRoleNames[] = {"none", "host", "group", "subsite", "site", "supersite"};

const String* emptyOnFirstUse(String** name) {
    if (*name == nullptr) *name = stringNewEmpty();
    return *name;
}

}  // namespace

String* sysGetArch() {
    return stringClone(machineFacts().architecture);
}

String* sysGetOsName() {
    return stringClone(machineFacts().osName);
}

uint32_t sysGetOsVersion() {
    return machineFacts().osVersion;
}

String* sysGetOsVersionText() {
    return stringClone(machineFacts().osVersionText);
}

uint32_t sysGetOsBits() {
    return osBits();
}

bool sysIsWow64() {
    return osIsWow64();
}

String* sysGetComputerName() {
    std::string name;
    return osComputerName(&name) ? stringFromView(name) : nullptr;
}

String* sysGetPlainHost() {
    std::string name;
    std::string domain;
    if (!osComputerName(&name) || !osDomainName(&domain)) return nullptr;
    return sysCutDomain(name, domain);
}

String* sysCutDomain(std::string_view host, std::string_view domain) {
    std::string_view plain = host;
    if (domain.size() < host.size() && host.ends_with(domain)) {
        plain = host.substr(0, host.size() - domain.size() - 1);
    }
    return stringFromView(plain);
}

String* sysGetDomain() {
    std::string domain;
    return osDomainName(&domain) ? stringFromView(domain) : nullptr;
}

String* sysGetUser() {
    std::string user;
    return osUserName(&user) ? stringFromView(user) : nullptr;
}

bool sysEnablePrivilege(const char* name) {
    return name != nullptr && osEnablePrivilege(name);
}

bool sysGetRouter(String* hostOut, uint32_t* portOut) {
    RegResult host = RegResult::Done;
    RegResult port = RegResult::Done;
    if (hostOut != nullptr) host = getConfigString(kNetworkSettings, "router-host", hostOut);
    if (portOut != nullptr) port = getConfigNumber(kNetworkSettings, "router-port", portOut);
    return host == RegResult::Done && port == RegResult::Done;
}

bool sysIsLaptop() {
    uint64_t now = osClockTicks();
    if (laptop.known && now - laptop.readAt < kLaptopCacheMilliseconds) return laptop.isLaptop;
    uint32_t value = 0;
    if (getConfigNumber(kNetworkSettings, "laptop", &value) != RegResult::Done) return false;
    laptop = {true, value == 1, now};
    return laptop.isLaptop;
}

MachineRole sysGetRole() {
    Owned<String> role(stringNewEmpty());
    if (getConfigString(kNetworkSettings, "role", role.get()) != RegResult::Done) {
        return MachineRole::None;
    }
    for (uint32_t i = 0; i < std::size(kRoleNames); ++i) {
        if (stringView(role.get()) == kRoleNames[i]) return static_cast<MachineRole>(i);
    }
    return MachineRole::None;
}

const char* sysRoleName(MachineRole role) {
    return kRoleNames[static_cast<uint32_t>(role)];
}

const String* sysGetLocalGroup() {
    return emptyOnFirstUse(&localNames.group);
}

const String* sysGetLocalSubsite() {
    return emptyOnFirstUse(&localNames.subsite);
}

const String* sysGetLocalSite() {
    return emptyOnFirstUse(&localNames.site);
}

void sysReleaseCache() {
    for (String** text : {&facts.architecture, &facts.osName, &facts.osVersionText,
                          &localNames.group, &localNames.subsite, &localNames.site}) {
        stringDestroy(text);
    }
    facts = MachineFacts();
    laptop = LaptopFlag();
}
