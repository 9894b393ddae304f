#pragma once

#include <string_view>

#include "paths/OpenDirectory.h"
#include "platform/fileoperations.h"

// Parts of the operations of paths/PathOperations.h that meet entries by their
// directory. Those that can fail give false with the reason in
// the record.

// Copies all that is in an open directory into another, which is empty; takes
// both over.
bool pathCopyTree(OpenDirectory source, OpenDirectory target, OsSync sync);

// Removes all that is in an open directory, and takes that over.
bool pathRemoveTree(OpenDirectory top, bool force);

// Removes an entry itself, a directory only when it is empty.
bool pathRemoveEntry(OsDirectory* directory, const char* name, OsEntryKind kind, bool force);

// Whether the path, which need not exist, is below a directory. Links among its
// parents are seen through.
bool pathIsBelow(std::string_view path, const OsFileId& directory);

// The path without the separators at its end, except a root's.
std::string_view pathWithoutEnd(std::string_view path);

// Opens the directory that holds the last name of a path, to reach that name.
bool pathReachParent(std::string_view path, OpenDirectory* parent, std::string_view* name);
