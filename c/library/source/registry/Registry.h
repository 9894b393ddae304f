#pragma once

#include <cstdint>

struct List;
struct String;

// Reading and writing the registry. Roots are the system's numbers, as
// `regRootFromName` gives them. A null or empty key means the root itself. The
// functions do not log, except that the registry's file is damaged or none.

enum class RegResult : int {
    Done = 0,
    Arguments = 1,  // a null argument
    NotFound = 2,   // root, key or value
    OtherType = 3,
    NoAccess = 4,
    Failed = 5,
    NoMemory = 6,
};

// The root key of a name such as "HKEY_LOCAL_MACHINE", compared exactly. False,
// with `root` as it was, for any other.
bool regRootFromName(const String* name, uint32_t* root);

// Reads a text, expandable text, binary or multi-text value into `out`, without
// its trailing zero bytes and not expanded. `isExpandOut`, if given, tells
// whether it is expandable. On failure `out` stays as it was.
RegResult regGetString(uint32_t root, const String* key, const String* value, String* out,
                       bool* isExpandOut = nullptr);

// Reads a 32-bit number.
RegResult regGetNumber(uint32_t root, const String* key, const String* value, uint32_t* out);

// Writes a value; keys that do not exist are made, with all parents.
RegResult regSetValue(uint32_t root, const String* key, const String* value, uint32_t type,
                      const void* data, uint32_t size);

// Writes a text of as many bytes as the String has, with no terminator.
RegResult regSetString(uint32_t root, const String* key, const String* value, const String* string);
RegResult regSetNumber(uint32_t root, const String* key, const String* value, uint32_t number);

// Deletes a value. A key that does not exist counts as done; a value that does
// not is Failed.
RegResult regDeleteValue(uint32_t root, const String* key, const String* value);

// Adds the names of the keys directly below a key to the list, in the registry's
// order, as new Strings of the caller's.
RegResult regGetSubKeys(uint32_t root, const String* key, List* out);

// Deletes a key with all below it. A root stays, with all it holds: Failed.
RegResult regDeleteKey(uint32_t root, const String* key);

// The product's own settings: the values of "SOFTWARE\Quorel\version6\" with
// `subKey` (may be null) behind it, under the local machine's root.
RegResult getConfigString(const char* subKey, const char* value, String* out);
RegResult getConfigNumber(const char* subKey, const char* value, uint32_t* out);
