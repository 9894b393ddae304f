#include "platform/namedlocks.h"

#include <windows.h>

#include <algorithm>

// A lock is a mutex that exists: whoever made it holds the lock, and the system
// ends it with its last handle.

namespace {

constexpr wchar_t kPrefix[] = L"Global\\";
constexpr size_t kPrefixLength = sizeof kPrefix / sizeof *kPrefix - 1;

}  // namespace

int osNamedLockTake(std::string_view name, bool, OsNamedLock** lock) {
    *lock = nullptr;
    // The system's own byte functions go as far.
    if (name.size() > MAX_PATH - kPrefixLength) return ERROR_FILENAME_EXCED_RANGE;
    // What stands before a backslash would be a way to other locks.
    if (name.find_first_of(std::string_view("\\\0", 2)) != std::string_view::npos)
        return ERROR_INVALID_NAME;
    // A character a byte: no code page makes two names one.
    wchar_t wide[MAX_PATH + 1] = {};
    std::copy_n(kPrefix, kPrefixLength, wide);
    std::transform(name.begin(), name.end(), wide + kPrefixLength,
                   [](char c) { return static_cast<unsigned char>(c); });
    HANDLE mutex = CreateMutexW(nullptr, TRUE, wide);
    const DWORD error = GetLastError();
    if (mutex == nullptr) return error == ERROR_ALREADY_EXISTS ? 0 : static_cast<int>(error);
    if (error == ERROR_ALREADY_EXISTS)
        CloseHandle(mutex);
    else
        *lock = reinterpret_cast<OsNamedLock*>(mutex);
    return 0;
}

int osNamedLockRelease(OsNamedLock** lock) {
    HANDLE mutex = reinterpret_cast<HANDLE>(*lock);
    if (!ReleaseMutex(mutex)) return static_cast<int>(GetLastError());
    CloseHandle(mutex);
    *lock = nullptr;
    return 0;
}
