#pragma once

#include <string>

// What stands behind an open directory on this system: its full path. Names of
// entries hold no separators here, so a path made of them stays in the tree.
struct OsDirectory {
    std::string path;  // ends in a separator

    std::string entry(const char* name) const { return path + name; }
};
