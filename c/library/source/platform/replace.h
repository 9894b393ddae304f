#pragma once

#include <string_view>

#include "platform/files.h"

// What it takes to put a new file in the place of another in one step, so that
// whoever looks, and whoever comes after a crash, finds the old one or the new
// one whole. Paths and results as in platform/files.h.

// Removes the file, or the link, of this name; 0 when there is none.
int osReplaceRemove(std::string_view path);

// Makes an empty file that nobody may read who may not read the file `like`.
// Fails when the name is taken.
int osReplaceCreate(std::string_view like, std::string_view path);

// Gives the file `to` the rights of the file `from`: mode and owner, or security
// descriptor and attributes. Goes as far as the system lets this process, and
// then gives the number of the first thing refused.
int osReplaceCopyRights(std::string_view from, std::string_view to);

// Waits until what was written is on the disk. 0 where the file is of a kind
// that has none.
int osReplaceSync(OsFile file);

// Gives the file `from` the name `to`, in one step also where there is a file of
// that name. What is there and is no regular file is refused.
int osReplaceRename(std::string_view from, std::string_view to);
