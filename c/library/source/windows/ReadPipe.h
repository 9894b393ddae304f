#pragma once

#include <windows.h>

#include <cstddef>

// The reading end of a pipe whose bytes can be waited for: a read is always under
// way into a block of its own.
class ReadPipe {
  public:
    ReadPipe() = default;
    ReadPipe(const ReadPipe&) = delete;
    ReadPipe& operator=(const ReadPipe&) = delete;
    ~ReadPipe();

    // Makes the pipe; the writing end is the caller's, and can be handed on to a
    // child. Gives the system's error number, 0 for success.
    int create(HANDLE* writeEnd);
    // Starts the first read, once the writing end has been handed on.
    void start();

    bool exists() const { return handle_ != INVALID_HANDLE_VALUE; }
    // Raised when something has come or the pipe is at its end.
    HANDLE event() const { return read_.hEvent; }
    // Takes what has come, without waiting.
    int take(void* buffer, size_t size, size_t* got, bool* atEnd);

  private:
    int finishRead(DWORD error);

    static constexpr DWORD kBlock = 64 * 1024;
    HANDLE handle_ = INVALID_HANDLE_VALUE;
    OVERLAPPED read_{};
    bool isUnderWay_ = false;
    bool isAtEnd_ = false;
    int error_ = 0;
    DWORD from_ = 0;  // what has come and was not taken yet
    DWORD to_ = 0;
    char block_[kBlock];
};
