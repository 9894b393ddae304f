#pragma once

#include <cstdint>

#include "containers/Owned.h"
#include "files/FileStatus.h"
#include "logger/Logger.h"
#include "strings/String.h"

// Files of gzip streams: blocks in, blocks out. A record belongs to one thread.

struct gzFile_s;

// The fields of a `BasicFile`, in its order.
struct ZFile {
    gzFile_s* stream;  // null when closed
    String* name;
    uint32_t mode;  // 0 when closed
    uint8_t atEnd;  // 1 when closed
    Logger* logger;
    uint32_t line;
    uint32_t recordLine;
    uint32_t identity;
};

// A closed record with a copy of `name`, to which ".gz" is added unless it ends
// in exactly that. Null for a null name or when memory runs out. The caller ends
// it with `zfileDestroy`.
ZFile* zfileInitStr(const String* name);

// Closes if need be, and clears the pointer. Null-safe.
void zfileDestroy(ZFile** file);

template <>
struct OwnedTraits<ZFile> {
    static void destroy(ZFile** file) { zfileDestroy(file); }
};

// Opens for reading or for writing at the best compression; other modes are refused.
FileStatus zfileOpen(ZFile* file, uint32_t mode);
FileStatus zfileClose(ZFile* file);

bool bfileIsReadable(const ZFile* file);
bool bfileIsWritable(const ZFile* file);

// Replaces `out` by up to `count` bytes. At the end `out` keeps what it held. A
// damaged stream gives `kFileShort` where its good part ends, `out` kept likewise.
FileStatus zfileRead(ZFile* file, String* out, uint32_t count);

FileStatus zfileWriteVal(ZFile* file, const void* data, uint32_t length);
FileStatus zfileWrite(ZFile* file, const String* text);
