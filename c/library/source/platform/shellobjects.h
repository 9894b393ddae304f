#pragma once

// The optional library that resolves paths with shell objects: "quorel_shellobj.dll",
// or "quorel_shellobj.so", from where the system looks for libraries.

// Rewrites a path, ended by a zero byte, in a buffer of at least
// `kOsShellPathSize` bytes; 0 when it cannot.
using OsShellGetPath = int (*)(char* path);
constexpr unsigned kOsShellPathSize = 261;

struct OsShellLibrary {
    void* handle = nullptr;
    OsShellGetPath getPath = nullptr;
};

// Loads the library; false when it or its function is missing, and then there is
// nothing to release.
bool osShellLibraryLoad(OsShellLibrary* library);
void osShellLibraryRelease(OsShellLibrary* library);
