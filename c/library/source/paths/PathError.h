#pragma once

#include <cstdint>

struct String;

// Why the last path function of this thread failed. Each function of the path
// modules that can fail clears the record first.

enum PathErrorCode : uint32_t {
    kPathDone = 0,
    kPathEmpty = 2,  // an empty or null path
    kPathNoMemory = 3,
    kPathNoShellLibrary = 4,  // the shell object library could not be used
    kPathTargetExists = 5,
    kPathNotFound = 17,
    kPathSystem = 18,  // a system call failed, the text tells which way
    kPathNotDirectory = 20,
    kPathIsDirectory = 21,
    kPathCompareFailed = 24,
};

// The code of this thread's last failure, `kPathDone` when nothing failed.
uint32_t pathLastErrorCode();

// The text of the last failure in a new String of the caller's; null when there
// is none. It is made only when asked for: a search fails hundreds of times
// before it succeeds.
String* pathLastErrorText();

// Clears this thread's record.
void pathClearError();

// Record a failure and give false, for the functions of the path modules.
bool pathFail(PathErrorCode code);
bool pathFailSystem(int systemError);

// Puts back, at its end, the record of this thread as it was at its start.
class PathErrorKeeper {
  public:
    PathErrorKeeper();
    PathErrorKeeper(const PathErrorKeeper&) = delete;
    PathErrorKeeper& operator=(const PathErrorKeeper&) = delete;
    ~PathErrorKeeper();

  private:
    uint32_t code_;
    int systemError_;
};
