#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

// Files and directories of the system. Paths are bytes; a zero byte ends one.
// Both separators are understood: where the system knows only `/`, the supply
// turns `\` into it. Every function gives the system's error number, 0 for
// success; outputs are written on success only, unless told otherwise.

// An open file: a C descriptor on both systems, so that a gzip stream can take it over.
using OsFile = int;
constexpr OsFile kOsNoFile = -1;

// How a file is opened. Bytes are never translated.
enum OsOpenMode : uint32_t {
    kOsOpenRead = 1,        // must exist
    kOsOpenWrite = 2,       // made or emptied
    kOsOpenAppend = 3,      // made if missing; each write goes to the end
    kOsOpenReadWrite = 4,   // must exist
    kOsOpenWriteRead = 5,   // made or emptied, may be read
    kOsOpenAppendRead = 6,  // as append, may be read from the start
};

// Opens `path` in one of the modes above; children do not inherit the file. A
// directory is refused in every mode. The caller ends the file with `osFileClose`.
int osFileOpen(std::string_view path, uint32_t mode, OsFile* file);

// Whether opening, reading or writing what is at the path can wait for someone
// else, as with a pipe, a terminal or a device.
bool osPathWaits(std::string_view path);

// Reads up to `size` bytes and tells how many came; 0 is the end of the file. May
// give fewer than asked for (a pipe, a terminal) although more will follow.
int osFileRead(OsFile file, void* buffer, size_t size, size_t* got);

// Writes all of the bytes. After a failure `written` tells how many went out.
int osFileWrite(OsFile file, const void* data, size_t size, size_t* written);

enum class OsSeek { Start, Current, End };

// Moves the place of the next read or write and tells the new one, from the
// start; `position` may be null. Pipes and terminals refuse.
int osFileSeek(OsFile file, int64_t offset, OsSeek from, uint64_t* position);

// Closes; the file is gone whatever the result.
int osFileClose(OsFile file);

// Attributes of a file, as scripts number them.
enum OsFileFlag : uint32_t {
    kOsFileArchive = 1,
    kOsFileCompressed = 2,
    kOsFileDirectory = 4,
    kOsFileEncrypted = 8,
    kOsFileHidden = 16,
    kOsFileOffline = 32,
    kOsFileReadOnly = 64,
    kOsFileSystem = 128,
    kOsFileTemporary = 256,
};

// Times are milliseconds since 1900-01-01 00:00:00 UTC, 0 where one is not known.
struct OsFileInfo {
    uint64_t size = 0;
    uint32_t flags = 0;
    uint64_t created = 0;
    uint64_t accessed = 0;
    uint64_t modified = 0;
};

// What the file system tells about a file or a directory, in one call; links are
// followed. `path` has no trailing separator, except a root.
int osFileInfo(std::string_view path, OsFileInfo* info);

// The path made absolute, with no look at the disk.
int osFullPath(std::string_view path, std::string* full);

// The name of the last component of an existing `path` in the spelling of the
// disk; where file names differ by case that is the component itself.
int osTrueName(std::string_view path, std::string* name);

// Whether the drive of a path such as "c:" exists; false where there are no drives.
bool osDriveExists(std::string_view path);

// Whether a path that begins with one separator is absolute on this system.
bool osLeadingSeparatorIsAbsolute();

int osCurrentDirectory(std::string* path);
int osSetCurrentDirectory(std::string_view path);

// Makes one directory; its parent must exist.
int osMakeDirectory(std::string_view path);

// The system's own words for an error number, without a line end; empty when it has none.
std::string osErrorText(int error);
