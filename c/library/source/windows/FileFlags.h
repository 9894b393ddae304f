#pragma once

#include <windows.h>

#include "platform/files.h"

struct FileFlagPair {
    DWORD attribute;
    uint32_t flag;
};
constexpr FileFlagPair kFileFlagPairs[] = {
    {FILE_ATTRIBUTE_ARCHIVE, kOsFileArchive},     {FILE_ATTRIBUTE_COMPRESSED, kOsFileCompressed},
    {FILE_ATTRIBUTE_DIRECTORY, kOsFileDirectory}, {FILE_ATTRIBUTE_ENCRYPTED, kOsFileEncrypted},
    {FILE_ATTRIBUTE_HIDDEN, kOsFileHidden},       {FILE_ATTRIBUTE_OFFLINE, kOsFileOffline},
    {FILE_ATTRIBUTE_READONLY, kOsFileReadOnly},   {FILE_ATTRIBUTE_SYSTEM, kOsFileSystem},
    {FILE_ATTRIBUTE_TEMPORARY, kOsFileTemporary},
};

inline uint32_t fileFlagsOf(DWORD attributes) {
    uint32_t flags = 0;
    for (const FileFlagPair& pair : kFileFlagPairs) {
        if ((attributes & pair.attribute) != 0) flags |= pair.flag;
    }
    return flags;
}

// What makes a thing a directory is no mark that could be changed.
inline DWORD attributesOf(uint32_t flags) {
    DWORD attributes = 0;
    for (const FileFlagPair& pair : kFileFlagPairs) {
        if (pair.flag != kOsFileDirectory && (flags & pair.flag) != 0) attributes |= pair.attribute;
    }
    return attributes;
}
