#pragma once

#include <cstdint>
#include <string_view>

// Directories held open, and work on what is in them. An entry is reached from
// its directory by its name alone, in the bytes that the system gave: a name is
// never taken for a path, so none leads out of a tree, whatever it holds, and a
// directory that is swapped for a link meanwhile is refused. Every function gives
// the system's error number, 0 for success, unless told otherwise; outputs are
// written on success only.

struct OsDirectory;

// What an entry is itself; no link is followed. A directory that only stands for
// another one is a link.
enum class OsEntryKind : uint8_t { File, Directory, Link, Other };

// Opens the directory at the path; when its last name is a link, it is followed
// or refused. The caller closes what was opened.
int osDirectoryOpen(std::string_view path, bool followLink, OsDirectory** directory);

// Opens what the path leads to, through links, without the right to read it: to
// reach its entries.
int osDirectoryReach(std::string_view path, OsDirectory** directory);

// Opens a directory by its entry; a link is refused.
int osDirectoryOpenEntry(OsDirectory* parent, const char* name, OsDirectory** directory);

// Opens, to reach its entries, the directory that holds this one; a root holds itself.
int osDirectoryOpenParent(OsDirectory* directory, OsDirectory** parent);

// Closes, and clears the pointer. Null-safe.
void osDirectoryClose(OsDirectory** directory);

// Tells a file or directory from all others of the machine.
struct OsFileId {
    uint64_t volume = 0;
    uint64_t number = 0;
    bool operator==(const OsFileId&) const = default;
};
int osDirectoryId(OsDirectory* directory, OsFileId* id);

// The same for what the path leads to, through links.
int osFileId(std::string_view path, OsFileId* id);

// Called for each entry; false ends the reading.
using OsEntryVisitor = bool (*)(void* context, std::string_view name, OsEntryKind kind);

// Visits all entries but "." and "..", in the order of the file system. Behind
// `name` stands a zero byte; both last until the visitor returns. A directory is
// read once after it was opened. Success, too, when the visitor ended the reading.
int osDirectoryRead(OsDirectory* directory, OsEntryVisitor visitor, void* context);

// What is at the path itself, a link not followed.
int osPathKind(std::string_view path, OsEntryKind* kind);

// Whether the entry leads to a directory, through links.
bool osEntryLeadsToDirectory(OsDirectory* directory, const char* name);

// Removes the entry itself, a directory only when it is empty.
int osEntryRemove(OsDirectory* directory, const char* name, OsEntryKind kind);
