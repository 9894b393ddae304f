#pragma once

#include <cstdint>

struct String;

// Paths are Strings of bytes. `/` and `\` both separate everywhere; a separator
// that is added or unified is `\`. Nothing here logs: a failure gives false,
// null or zero, and those functions that look at the disk leave the reason in
// the record of paths/PathError.h. In-place functions give false, with the path
// as it was, for a null path or when memory runs out. A new String belongs to
// the caller.

// ---- Text of a path, with no look at the disk ----

// Whether the byte separates.
constexpr bool pathIsSeparator(char byte) {
    return byte == '/' || byte == '\\';
}

// Cuts one separator from the end, if there is one.
bool pathRemoveTrailingSeparator(String* path);

// Adds "\" unless the path is empty or ends in a separator.
bool pathEnsureTrailingSeparator(String* path);

// Index of the last separator, not counting one at the very end; -1 when there
// is none. A path that is one separator gives 0.
int64_t pathLastSeparator(const String* path);

// New: the text up to and including the last separator; empty when there is none.
String* pathDirectoryPart(const String* path);

// New: the last component, without separators.
String* pathBaseName(const String* path);

// New: the text behind the last point of the whole path, one in a directory's
// name included, without one trailing separator; empty when there is no point.
// `found`, if given, tells whether there was one.
String* pathSuffix(const String* path, bool* found = nullptr);

// Removes everything from the last point on, then one trailing separator.
bool pathCutSuffix(String* path);

// Removes what stands behind the last separator. Without one nothing changes.
bool pathCutToDirectory(String* path);

// Turns all separators into "\" and runs of them into one; a leading pair, as of
// a network path, stays.
bool pathUnifySeparators(String* path);

// Unifies the separators, drops empty and "." components and lets each ".."
// remove the component before it; one with nothing to remove stays. A leading
// separator or pair survives, and so does a trailing one behind a component. A
// relative path never begins with a separator afterwards: when no component is
// left it is empty, which stands for the current directory.
bool pathResolveDots(String* path);

// Whether a path says on its own where it begins: "c:\...", "\\host\..." and,
// where the system has one root, a leading separator. Changes nothing.
bool pathIsAbsolute(const String* path);

// ---- Paths in the light of the system ----

// Unifies the separators and tells whether the path is absolute. A relative one
// that exists is made absolute with the current directory, which counts as true.
bool pathIsFull(String* path);

// Replaces "/c:" and its like, the names of special folders between percent
// signs, and "\systemroot". A search for percent signs that would meet the same
// one again with nothing changed ends, with the text left as it stands.
bool pathExpand(String* path);

// Gives each component the spelling of the disk, as far as the path exists.
bool pathTrueCase(String* path);

// Expand, resolve dots, true case.
bool pathCanonical(String* path);

// Makes a path that exists unique: "a.txt" becomes "a-00000.txt" or the first
// higher number that is free. A path that does not exist is left alone unless
// `always` is set.
bool pathMakeUnique(String* path, bool always);

// ---- What is there ----

struct FileInfo {
    String* path = nullptr;  // owned, the full path
    uint64_t size = 0;
    uint32_t flags = 0;    // OsFileFlag values of platform/files.h
    uint64_t created = 0;  // milliseconds since 1900 UTC, 0 when not known
    uint64_t accessed = 0;
    uint64_t modified = 0;
};

// Fills `info` for a file or directory; one trailing separator is ignored. The
// record's path is released by `fileInfoClear`. On failure the record is empty.
bool getFileInfo(const String* path, FileInfo* info);

// Releases what the record holds and empties it.
void fileInfoClear(FileInfo* info);

// Whether anything, a file or a directory, is at the path. An empty path, ".",
// "./" and ".\" exist without a look at the disk.
bool pathExists(const String* path);

// Whether file information can be had.
bool pathFileExists(const String* path);

// Whether file information can be had, or, for a path such as "c:\", the drive is there.
bool pathDirectoryExists(const String* path);

// Whether the thing at the path is a directory.
bool pathIsDirectory(const String* path);

// Size in bytes, 0 when it cannot be had.
uint64_t pathFileSize(const String* path);

// New: the current directory as the system spells it; null on failure.
String* pathCurrentDirectory();
bool pathSetCurrentDirectory(const String* path);

// Makes one directory; its parent must exist.
bool pathMakeDirectory(const String* path);

// Makes the directory of a path with all its parents. A path without a trailing
// separator names a file, and its last component is not made. On failure what
// was made stays.
bool pathMakeDirectoryPath(const String* path);

// Looks for `name` in the current directory and the directories of the search
// path, each with all its parents, and puts the first path that exists into
// `target`. False, with `target` as it was, when there is none.
bool pathFindInPath(const String* name, String* target);
