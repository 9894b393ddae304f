#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

#include "containers/Memory.h"
#include "files/FileStatus.h"
#include "platform/files.h"

// The open file behind the records that were copied from each other, with its
// block of memory. It counts its records, and once closed it stays closed, until
// the last record lets go of it.

constexpr size_t kFileBlockSize = 64 * 1024;

struct FileStream {
    OsFile file;
    uint32_t mode;
    uint32_t records;
    bool open;
    bool ended;     // a read has met the end, or failed; reading stays ended until a write
    bool failed;    // the last read failed
    bool lossTold;  // a close has failed, and its caller knows
    bool waits;     // the other side is not a disk: what was printed goes out before
    // The block holds either bytes that were read and are not taken yet, or bytes
    // that are still to be written, which begin at 0; never both.
    size_t readAt;
    size_t readEnd;
    size_t pending;
    char block[kFileBlockSize];
};

// Opens the file for one record. `kFileCannotOpen` or `kFileNoMemory` when it fails.
FileStatus fileStreamOpen(std::string_view name, uint32_t mode, FileStream** stream);

void fileStreamShare(FileStream* stream);

// Lets go of the stream and clears the pointer; the last record closes it. False
// when bytes were lost.
bool fileStreamRelease(FileStream** stream);

// Writes what is pending and closes. False leaves the stream open.
bool fileStreamClose(FileStream* stream);

// Makes at least one byte ready to be taken; false at the end or on a failure.
bool fileStreamFill(FileStream* stream);

inline std::string_view fileStreamReady(const FileStream* stream) {
    return {stream->block + stream->readAt, stream->readEnd - stream->readAt};
}

inline void fileStreamTake(FileStream* stream, size_t count) {
    stream->readAt += count;
}

// Reads until `count` bytes have come, the end is met, or a read fails.
size_t fileStreamRead(FileStream* stream, char* out, size_t count);

// Takes bytes over for writing and gives how many; fewer when the system refuses.
size_t fileStreamWrite(FileStream* stream, const char* data, size_t count);

// Hands what is pending to the system; what it refuses stays pending.
bool fileStreamFlush(FileStream* stream);

// The next number by which messages name a record.
uint32_t fileNextIdentity();
