#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

// Facts about the machine and its users. No function reaches over the network,
// apart from the user and group database where the system is set up that way.
// False, with nothing written, means that the fact cannot be had.

// Name of the system's kind, for scripts: "windows" or "linux".
const char* osPlatformName();

struct OsRelease {
    std::string name;     // empty when unknown
    std::string version;  // digits and points only; empty when unknown
};
bool osRelease(OsRelease* release);

// The version numbers of a Windows system; false on any other, where `osRelease` tells.
struct OsWindowsVersion {
    uint32_t platformId = 0;
    uint32_t major = 0;
    uint32_t minor = 0;
    uint32_t productType = 0;
    uint32_t suiteMask = 0;
    uint32_t servicePack = 0;
    bool isRelease2 = false;
};
bool osWindowsVersion(OsWindowsVersion* version);

// The processor's word: "amd64", "i586", "powerpc" and the like, "error" for others.
std::string osArchitecture();

// The width of the system as scripts see it, 32 or 64.
uint32_t osBits();

// Whether the process runs under the emulation of an older width.
bool osIsWow64();

// The computer's name, at most 128 bytes of it.
bool osComputerName(std::string* name);

// The machine's domain or workgroup, at most 200 bytes, never by a look-up.
bool osDomainName(std::string* name);

// The user in whose name the process acts.
bool osUserName(std::string* name);

// The user's locale, as in "en_US.UTF-8". False on a system that keeps its
// language in the registry.
bool osLocale(std::string* locale);

enum class OsFolder { Fonts, Programs, System, Windows, Users, StartMenu, Startup };
bool osSpecialFolder(OsFolder folder, std::string* path);

// The directory that "\systemroot" stands for. Gives the system's error number, 0 for success.
int osSystemRoot(std::string* path);

// Switches a named privilege of this process on; false where there is no such thing.
bool osEnablePrivilege(const char* name);

// Local groups, and the users in one of them, those with it as primary group included.
bool osGroups(std::vector<std::string>* groups);
// Users by the names that they have on this machine, without a domain in front.
bool osGroupMembers(std::string_view group, std::vector<std::string>* members);

// The local groups that list the user, and the user's primary group. A group that
// cannot be read is passed over.
bool osUserGroups(std::string_view user, std::vector<std::string>* groups);

// A variable of the process's environment; false when it is not set.
bool osGetEnvironment(std::string_view name, std::string* value);
bool osSetEnvironment(std::string_view name, std::string_view value);

// The search path for files and the byte that separates its parts.
bool osSearchPath(std::string* path, char* separator);
