#pragma once

#include "containers/Owned.h"
#include "platform/directories.h"

// An open directory that closes itself.
template <>
struct OwnedTraits<OsDirectory> {
    static void destroy(OsDirectory** directory) { osDirectoryClose(directory); }
};
using OpenDirectory = Owned<OsDirectory>;
