#pragma once

#include <cstdint>

// What both kinds of files share: results and modes, by their numbers.

// A plain integer, since it travels on as a script's or an error message's number.
using FileStatus = int;

constexpr FileStatus kFileDone = 0;
constexpr FileStatus kFileLimit = 1;  // the length limit came before a stop
constexpr FileStatus kFileNull = 2;   // an argument is missing
constexpr FileStatus kFileNoMemory = 3;
constexpr FileStatus kFileNoName = 6;
constexpr FileStatus kFileWrongMode = 7;
constexpr FileStatus kFileAlreadyOpen = 9;
constexpr FileStatus kFileCannotOpen = 10;
constexpr FileStatus kFileNotOpen = 11;
constexpr FileStatus kFileCannotClose = 12;
constexpr FileStatus kFileShort = 14;  // a short read that is not the end, or a short write
constexpr FileStatus kFileNotFlushed = 15;
constexpr FileStatus kFileAtEnd = 23;  // the end was met and nothing was read

constexpr uint32_t kFileClosed = 0;
constexpr uint32_t kFileRead = 1;        // "r"
constexpr uint32_t kFileWrite = 2;       // "w"
constexpr uint32_t kFileAppend = 3;      // "a"
constexpr uint32_t kFileReadWrite = 4;   // "r+"
constexpr uint32_t kFileWriteRead = 5;   // "w+"
constexpr uint32_t kFileAppendRead = 6;  // "a+"

constexpr bool fileModeReads(uint32_t mode) {
    return mode == kFileRead || (mode >= kFileReadWrite && mode <= kFileAppendRead);
}
constexpr bool fileModeWrites(uint32_t mode) {
    return mode >= kFileWrite && mode <= kFileAppendRead;
}
