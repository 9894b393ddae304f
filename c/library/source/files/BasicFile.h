#pragma once

#include <cstdint>

#include "containers/Owned.h"
#include "files/FileStatus.h"
#include "logger/Logger.h"
#include "strings/String.h"

// Files of bytes. A record has a name and, between open and close, a stream,
// which a copy of the record shares: the stream ends with its last record or when
// one of them is closed, and then the others read as closed too. The stream has
// the buffer, in blocks of 64 KiB. A record belongs to one thread.

struct FileStream;

struct BasicFile {
    FileStream* stream;  // null when closed
    String* name;        // null until one is set
    uint32_t mode;       // 0 when closed; see `bfileMode`
    uint8_t atEnd;       // see `bfileAtEnd`
    Logger* logger;
    uint32_t line;        // newlines passed by the text reads
    uint32_t recordLine;  // the line on which the text of the last read began
    uint32_t identity;    // the number that messages name the record by
};

// The greatest limit of the text reads stands for no limit.
constexpr uint32_t kNoLimit = 0xFFFFFFFF;

// A closed record without a name, or null when memory runs out. The caller ends
// it with `bfileDestroy`.
BasicFile* bfileInit();

// The same with a copy of `name`; null for a null name too.
BasicFile* bfileInitStr(const String* name);

// A second record on the same stream, with its own name and logger.
BasicFile* bfileCopy(const BasicFile* file);

// Closes if need be, and clears the pointer. What could not be written is lost:
// close first to hear of it. Null-safe.
void bfileDestroy(BasicFile** file);

template <>
struct OwnedTraits<BasicFile> {
    static void destroy(BasicFile** file) { bfileDestroy(file); }
};

// Sets the name. False while the record is open, or when memory runs out.
bool bfileSetName(BasicFile* file, const String* name);

// Opens in one of the modes of FileStatus.h, from the start of line 1.
FileStatus bfileOpen(BasicFile* file, uint32_t mode);

// Closes. When what is pending cannot be written the record stays open.
FileStatus bfileClose(BasicFile* file);

// The mode, and whether the end was met, as they are now: the stream may have
// been closed through another record. A closed record reads as at its end.
uint32_t bfileMode(const BasicFile* file);
bool bfileAtEnd(const BasicFile* file);

bool bfileIsReadable(const BasicFile* file);
bool bfileIsWritable(const BasicFile* file);

// Replaces `out` by up to `count` bytes.
FileStatus bfileRead(BasicFile* file, String* out, uint32_t count);

// Reads text up to the first byte of `stops` (zero-terminated; bytes above 127
// never match). The stop is not part of `out`; `hit` receives it, 0 if none, and
// may be null. Carriage returns are dropped. `kFileLimit` when `out` has reached
// `limit` bytes first.
FileStatus bfileReadUntilFirst(BasicFile* file, String* out, const char* stops, char* hit,
                               uint32_t limit);
FileStatus bfileReadUntil(BasicFile* file, String* out, char stop, char* hit, uint32_t limit);
FileStatus bfileReadLine(BasicFile* file, String* out, uint32_t limit);

// Write bytes; the line forms one "\n" behind them.
FileStatus bfileWriteVal(BasicFile* file, const void* data, uint32_t length);
FileStatus bfileWrite(BasicFile* file, const String* text);
FileStatus bfileWriteLineVal(BasicFile* file, const void* data, uint32_t length);
FileStatus bfileWriteLine(BasicFile* file, const String* text);

// Hands what is pending to the system.
FileStatus bfileFlush(BasicFile* file);

enum class FileComparison { Equal, Different, Failed };

// Compares two closed, named files by content; both are closed afterwards.
FileComparison bfileCompare(BasicFile* a, BasicFile* b);
