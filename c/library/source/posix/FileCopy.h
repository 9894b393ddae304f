#pragma once

#include <sys/stat.h>

#include <cstddef>

// One copy of a regular file on descriptors. Nothing else is ever opened for
// reading or writing. The end of the record removes what was begun and not
// finished. Functions give 0 or the system's error number.
class FileCopy {
  public:
    FileCopy() = default;
    FileCopy(const FileCopy&) = delete;
    FileCopy& operator=(const FileCopy&) = delete;
    ~FileCopy();

    // `flags` may forbid links.
    int openSource(int directory, const char* name, int flags);

    // Behind `openSource`. The directory and the name must last until the end.
    int openTarget(int directory, const char* name, bool overwrite);

    // Copies and closes; with `sync` the contents are on the disk then.
    int run(bool sync);

  private:
    int reserve(off_t oldSize);
    int copyParts();
    int copyRange(off_t size);
    int copyRest();
    int copyBlock(size_t most, size_t* got);

    int source_ = -1;
    int target_ = -1;
    struct stat status_ = {};  // of the source
    int directory_ = -1;
    const char* name_ = nullptr;
    bool isBegun_ = false;
    bool mustCut_ = false;  // the target may be longer, or end in a hole
};
