#include "platform/console.h"

#include <fcntl.h>
#include <io.h>
#include <windows.h>

#include <algorithm>

namespace {

// A console takes no more than this at once.
constexpr size_t kPiece = 32 * 1024;

HANDLE handleOf(OsOutput output) {
    return GetStdHandle(output == OsOutput::Standard ? STD_OUTPUT_HANDLE : STD_ERROR_HANDLE);
}

bool isOpen(HANDLE handle) {
    return handle != nullptr && handle != INVALID_HANDLE_VALUE;
}

LONG WINAPI endWithItsCode(EXCEPTION_POINTERS* fault) {
    TerminateProcess(GetCurrentProcess(), fault->ExceptionRecord->ExceptionCode);
    return EXCEPTION_EXECUTE_HANDLER;
}

VOID CALLBACK cancelWrite(PVOID thread, BOOLEAN) {
    CancelSynchronousIo(thread);
}

// Ends what the calling thread waits for once the time is over.
class WriteLimit {
  public:
    explicit WriteLimit(uint32_t milliseconds) {
        const HANDLE process = GetCurrentProcess();
        if (DuplicateHandle(process, GetCurrentThread(), process, &thread_, 0, FALSE,
                            DUPLICATE_SAME_ACCESS))
            CreateTimerQueueTimer(&timer_, nullptr, cancelWrite, thread_, milliseconds, 0,
                                  WT_EXECUTEINTIMERTHREAD);
    }
    WriteLimit(const WriteLimit&) = delete;
    WriteLimit& operator=(const WriteLimit&) = delete;
    ~WriteLimit() {
        if (timer_ != nullptr) DeleteTimerQueueTimer(nullptr, timer_, INVALID_HANDLE_VALUE);
        if (thread_ != nullptr) CloseHandle(thread_);
    }

  private:
    HANDLE thread_ = nullptr;
    HANDLE timer_ = nullptr;
};

}  // namespace

void osConsolePrepare() {
    for (int descriptor = 0; descriptor <= 2; ++descriptor) _setmode(descriptor, _O_BINARY);
    SetErrorMode(SEM_FAILCRITICALERRORS | SEM_NOGPFAULTERRORBOX | SEM_NOOPENFILEERRORBOX);
    SetUnhandledExceptionFilter(endWithItsCode);
}

int osConsoleWrite(OsOutput output, const void* data, size_t size, size_t* written) {
    const HANDLE handle = handleOf(output);
    const char* bytes = static_cast<const char*>(data);
    size_t done = 0;
    int error = isOpen(handle) ? 0 : ERROR_INVALID_HANDLE;
    while (done < size && error == 0) {
        DWORD count = 0;
        const DWORD piece = static_cast<DWORD>(std::min(kPiece, size - done));
        if (!WriteFile(handle, bytes + done, piece, &count, nullptr))
            error = static_cast<int>(GetLastError());
        else if (count == 0)
            error = ERROR_WRITE_FAULT;
        done += count;
    }
    if (written != nullptr) *written = done;
    return error;
}

int osConsoleTryWrite(OsOutput output, const void* data, size_t size, uint32_t milliseconds,
                      size_t* written) {
    const WriteLimit limit(milliseconds);
    return osConsoleWrite(output, data, size, written);
}

bool osConsoleIsTerminal(OsOutput output) {
    DWORD mode = 0;
    return GetConsoleMode(handleOf(output), &mode) != 0;
}

int osConsoleRead(void* buffer, size_t size, size_t* got) {
    const HANDLE handle = GetStdHandle(STD_INPUT_HANDLE);
    DWORD count = 0;
    if (isOpen(handle) &&
        !ReadFile(handle, buffer, static_cast<DWORD>(std::min(kPiece, size)), &count, nullptr)) {
        const DWORD error = GetLastError();
        if (error != ERROR_BROKEN_PIPE && error != ERROR_HANDLE_EOF) return static_cast<int>(error);
        count = 0;
    }
    *got = count;
    return 0;
}
