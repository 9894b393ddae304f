#pragma once

#include <cstdint>

struct String;

// What changes files and directories. Each function clears this thread's record
// of paths/PathError.h first, and gives false with the reason there. A file or
// directory is never put over itself, nor below itself: that fails before
// anything is changed, with `kPathTargetExists`.

// Copies a file, or what a link leads to. Only regular files are copied; pipes
// and devices are not opened. Without `overwrite` the target must not exist.
bool pathCopy(const String* source, const String* target, bool overwrite);

// Deletes a file or a link; with `force` also one that is read-only.
bool pathDelete(const String* path, bool force);

// Moves a file, a link or a directory. With `overwrite` a file at the target is
// replaced, a directory never is. To another file system it is copied, brought
// to the disk, put in its place and then deleted here.
bool pathMove(const String* source, const String* target, bool overwrite);

// The same, with one trailing separator removed from each path.
bool pathMoveDirectory(const String* source, const String* target, bool overwrite);

// Copies a directory with all that is in it; links are copied as links. With
// `overwrite` what is at the target is removed first, entirely, after the source
// was found; without it the target must not exist. The first failure ends it, and
// what was copied stays.
bool pathCopyDirectory(const String* source, const String* target, bool overwrite);

// Removes a directory, with `recursive` with all that is in it, with `force` also
// what is read-only. Of a link to a directory only the link is removed. The first
// failure ends it. A path that ends in "." or "..", or a root, is left to the
// system, which refuses.
bool pathRemoveDirectory(const String* path, bool recursive, bool force);

// 0555 for what is read-only, else 0777; 0 when it is not there.
uint32_t pathMode(const String* path);

// Only the bit 02 counts: set it clears the read-only mark, otherwise sets it.
bool pathSetMode(const String* path, uint32_t mode);

// Sets, or with `clear` removes, marks: OsFileFlag values of platform/files.h.
// Those that the system cannot change are passed over.
bool pathSetAttributes(const String* path, uint32_t flags, bool clear);

// Whether two paths have the same text, or lead to files of the same contents,
// which must not be empty. Two nulls are the same.
bool pathAreSameFile(const String* a, const String* b);
