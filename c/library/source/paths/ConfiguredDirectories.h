#pragma once

#include <cstdint>

struct String;

// The directories that the product's settings name, read once from the registry
// at the first request. They count only as a whole: when one other than the last
// is missing, all are absent.

// ORDER configured-directories
enum ConfiguredDirectory : uint32_t {
    kInstallDirectory = 0,
    kBinDirectory = 1,
    kScriptsDirectory = 2,
    kConfigDirectory = 3,
    kDebugDirectory = 4,
    kWorkDirectory = 5,
    kTempDirectory = 6,
    kSandboxDirectory = 7,
    kSourceRootDirectory = 8,
    kConfiguredDirectoryCount = 9,
};

// New, owned by the caller: the directory with a trailing separator. Null when it
// is not configured or memory runs out.
String* pathConfiguredDirectory(ConfiguredDirectory directory);

// Forgets what was read; the next request reads again.
void pathReleaseConfiguredDirectories();
