#pragma once

#include <cstdint>

#include "platform/machine.h"

struct String;

// The names that scripts know the Windows systems by.
// New, owned by the caller: a name such as "WindowsXPx64_SP2". Null on a system
// outside the NT family and when memory runs out.
String* windowsReleaseName(const OsWindowsVersion& version);

// The number that goes with the name, such as 520; 0 for one that is not known.
uint32_t windowsReleaseNumber(const OsWindowsVersion& version);
