#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

// The registry: a tree of keys under fixed roots, with typed values in each key.
// Key names in a path are separated by `\`; an empty path is the root itself.
// Names compare without regard to case. Every change is whole or not at all,
// except where the system itself deletes a tree key by key.

enum OsRegistryRoot : uint32_t {
    kOsClassesRoot = 0x80000000,
    kOsCurrentUser = 0x80000001,
    kOsLocalMachine = 0x80000002,
    kOsUsers = 0x80000003,
    kOsPerformanceData = 0x80000004,
    kOsCurrentConfig = 0x80000005,
};

enum OsRegistryType : uint32_t {
    kOsRegString = 1,
    kOsRegExpandString = 2,
    kOsRegBinary = 3,
    kOsRegNumber = 4,
    kOsRegMultiString = 7,
};

// Damaged: the file of the registry is not one, or not whole; it is left as it is.
enum class OsRegistryResult { Done, NotFound, NoAccess, Failed, NoMemory, Damaged };

// The file that holds a root, empty when the environment names no place for it.
// False where the registry is no file.
bool osRegistryFile(uint32_t root, std::string* path);

// Reads a value with its type and its raw bytes.
OsRegistryResult osRegistryGet(uint32_t root, std::string_view key, std::string_view value,
                               uint32_t* type, std::string* data);

// Writes a value; keys that do not exist are made, with all parents.
OsRegistryResult osRegistrySet(uint32_t root, std::string_view key, std::string_view value,
                               uint32_t type, std::string_view data);

// Deletes a value. NotFound when there is no such key; Failed when the key lacks the value.
OsRegistryResult osRegistryDeleteValue(uint32_t root, std::string_view key, std::string_view value);

// The names of the keys directly below a key, in the registry's order.
OsRegistryResult osRegistrySubKeys(uint32_t root, std::string_view key,
                                   std::vector<std::string>* names);

// Deletes a key with all below it. A root is Failed, with nothing deleted.
OsRegistryResult osRegistryDeleteKey(uint32_t root, std::string_view key);
