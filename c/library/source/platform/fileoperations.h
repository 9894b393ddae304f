#pragma once

#include <cstdint>
#include <string_view>

#include "platform/directories.h"

// Copies, moves and removals, and the marks on files. Every function gives the
// system's error number, 0 for success. Only regular files are read or written:
// a pipe or a device is refused without being opened.

// Copies the contents of a file with its time of modification; a new file gets
// the permissions of the source. Links are followed. Without `overwrite` an
// existing target is an error; with it, it keeps its contents when the system can
// tell beforehand that there is no room. What was begun and failed is removed.
int osFileCopy(std::string_view source, std::string_view target, bool overwrite);

// When a copy is on the disk, and not only in the system's memory.
enum class OsSync : uint8_t {
    Sometime,
    AtOnce,    // when the copy has returned
    WithTree,  // when `osTreeSync` has returned, for a tree that holds it
};

// Copies an entry, a file or a link as such, under a new name that must be free.
int osEntryCopy(OsDirectory* from, const char* name, OsEntryKind kind, OsDirectory* to,
                const char* newName, OsSync sync);

int osTreeSync(OsDirectory* top);

// Brings the names of a directory to the disk.
int osDirectorySync(OsDirectory* directory);

// Makes a directory with the permissions of another, as far as its owner can
// work in it.
int osEntryMakeDirectory(OsDirectory* parent, const char* name, OsDirectory* like);
int osMakeDirectoryLike(std::string_view path, OsDirectory* like);

// Removes a file or a link, no directory.
int osFileDelete(std::string_view path);

// Moves within a file system. An existing target is an error, unless `replace`:
// then it is replaced in one step.
int osMove(std::string_view source, std::string_view target, bool replace);
int osEntryMove(OsDirectory* directory, const char* name, const char* newName, bool replace);

// Whether a move failed since it would lead to another file system.
bool osIsOtherFileSystem(int error);

// Whether a removal may have failed since the thing is read-only.
bool osReadOnlyHinders(int error);

// Sets and clears marks, `OsFileFlag` values of platform/files.h; those that the
// system cannot change are passed over.
int osChangeFlags(std::string_view path, uint32_t set, uint32_t clear);

bool osEntryIsReadOnly(OsDirectory* directory, const char* name);
int osEntryClearReadOnly(OsDirectory* directory, const char* name);
