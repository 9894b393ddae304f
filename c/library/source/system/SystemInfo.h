#pragma once

#include <cstdint>
#include <string_view>

struct String;
struct Vector;

// What machine and user the program runs on. Each String is new and belongs to
// the caller; null means that the fact cannot be had, or that memory ran out.
// The first calls happen on one thread: what is cached has no lock.

// The processor's word, the system's name and its version number (0 when
// unknown); worked out once.
String* sysGetArch();
String* sysGetOsName();
uint32_t sysGetOsVersion();

// The version as text, of digits and points: "510" on one system, "12.5" on another.
String* sysGetOsVersionText();

// The width of the system as scripts see it, 32 or 64.
uint32_t sysGetOsBits();

// Whether the process runs under 64-bit emulation.
bool sysIsWow64();

// The computer's name, at most 128 bytes.
String* sysGetComputerName();

// The computer's name without a trailing domain and the byte before it; null
// without a domain.
String* sysGetPlainHost();

// The rule of the above: cuts the domain and the byte before it off a longer
// name that ends with it, exactly; any other name stays whole.
String* sysCutDomain(std::string_view host, std::string_view domain);

// The machine's workgroup or domain.
String* sysGetDomain();

// The present user.
String* sysGetUser();

// The language and its code in brackets; "unknown(unknown)" when it is not known.
String* sysGetLanguage();

// Vectors of new Strings: the local groups, the users of one, the groups of a
// user. `sysDestroyNames` ends such a vector with its Strings.
Vector* sysGetGroups();
Vector* sysGetGroupMembers(const String* group);
Vector* sysGetUserGroups(const String* user);
void sysDestroyNames(Vector** names);

// A special folder by its name, compared without regard to case, with a
// trailing separator. Null for a name that is not known.
String* sysGetSpecialFolder(const String* name);

// Switches a privilege of this process on.
bool sysEnablePrivilege(const char* name);

// The machine's router as configured. Each output may be null and is written
// when its setting exists; true when both do.
bool sysGetRouter(String* hostOut, uint32_t* portOut);

// Whether the machine is configured as a laptop; looks again after 300 seconds.
bool sysIsLaptop();

// ORDER machine-roles
enum class MachineRole : uint32_t { None, Host, Group, Subsite, Site, Supersite };

// The machine's configured role, and the word for a role.
MachineRole sysGetRole();
const char* sysRoleName(MachineRole role);

// The names of the machine's group, subsite and site: empty texts of the module.
const String* sysGetLocalGroup();
const String* sysGetLocalSubsite();
const String* sysGetLocalSite();

// Releases all that is cached.
void sysReleaseCache();
