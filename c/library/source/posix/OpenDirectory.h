#pragma once

// What stands behind an open directory on this system.
struct OsDirectory {
    int handle;
};
