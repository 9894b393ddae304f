#include "windows/ReadPipe.h"

#include <algorithm>
#include <cstdio>
#include <cstring>

namespace {

// Only a pipe with a name can be read without blocking.
HANDLE makeReadEnd(char* name, size_t size, DWORD block) {
    static LONG count = 0;
    std::snprintf(name, size, "\\\\.\\pipe\\quorel.%lu.%ld", GetCurrentProcessId(),
                  InterlockedIncrement(&count));
    return CreateNamedPipeA(
        name, PIPE_ACCESS_INBOUND | FILE_FLAG_OVERLAPPED | FILE_FLAG_FIRST_PIPE_INSTANCE,
        PIPE_TYPE_BYTE | PIPE_READMODE_BYTE | PIPE_WAIT | PIPE_REJECT_REMOTE_CLIENTS, 1, block,
        block, 0, nullptr);
}

}  // namespace

ReadPipe::~ReadPipe() {
    if (isUnderWay_ && CancelIoEx(handle_, &read_)) {
        DWORD got = 0;
        GetOverlappedResult(handle_, &read_, &got, TRUE);
    }
    if (exists()) CloseHandle(handle_);
    if (read_.hEvent != nullptr) CloseHandle(read_.hEvent);
}

int ReadPipe::create(HANDLE* writeEnd) {
    char name[64];
    read_.hEvent = CreateEventA(nullptr, TRUE, FALSE, nullptr);
    if (read_.hEvent == nullptr) return static_cast<int>(GetLastError());
    handle_ = makeReadEnd(name, sizeof name, kBlock);
    if (!exists()) return static_cast<int>(GetLastError());
    SECURITY_ATTRIBUTES inherited{sizeof(SECURITY_ATTRIBUTES), nullptr, TRUE};
    const HANDLE end = CreateFileA(name, GENERIC_WRITE, 0, &inherited, OPEN_EXISTING, 0, nullptr);
    if (end == INVALID_HANDLE_VALUE) return static_cast<int>(GetLastError());
    *writeEnd = end;
    return 0;
}

void ReadPipe::start() {
    isUnderWay_ = true;
    from_ = to_ = 0;
    if (ReadFile(handle_, block_, kBlock, nullptr, &read_)) return;
    const DWORD error = GetLastError();
    if (error != ERROR_IO_PENDING) finishRead(error);
}

int ReadPipe::finishRead(DWORD error) {
    isUnderWay_ = false;
    isAtEnd_ = true;
    if (error != ERROR_BROKEN_PIPE && error != ERROR_HANDLE_EOF) error_ = static_cast<int>(error);
    SetEvent(read_.hEvent);
    return error_;
}

int ReadPipe::take(void* buffer, size_t size, size_t* got, bool* atEnd) {
    *got = 0;
    if (isUnderWay_) {
        DWORD count = 0;
        if (GetOverlappedResult(handle_, &read_, &count, FALSE)) {
            isUnderWay_ = false;
            to_ = count;
        } else {
            const DWORD error = GetLastError();
            if (error == ERROR_IO_INCOMPLETE) {
                *atEnd = false;
                return 0;
            }
            finishRead(error);
        }
    }
    *got = std::min<size_t>(size, to_ - from_);
    std::memcpy(buffer, block_ + from_, *got);
    from_ += static_cast<DWORD>(*got);
    if (from_ == to_ && !isAtEnd_) start();
    *atEnd = isAtEnd_ && *got == 0;
    return error_;
}
