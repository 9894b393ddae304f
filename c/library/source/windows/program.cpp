#include "platform/program.h"

#include <intrin.h>
#include <windows.h>

#include <cstdint>

namespace {

// What the system needs at the end of a stack to report that it is used up.
constexpr uintptr_t kGuardBytes = 64 * 1024;
constexpr unsigned kLastWordsMilliseconds = 200;
// Where a thread's own block holds the lowest address of its stack.
constexpr unsigned long kStackBaseOffset = 0x1478;

OsLastWords sayLastWords = nullptr;

BOOL WINAPI onConsoleEvent(DWORD) {
    if (sayLastWords != nullptr) sayLastWords(kLastWordsMilliseconds);
    return FALSE;  // the next handler ends the process
}

}  // namespace

int osRunOnDeepStack(size_t, int (*function)(void*), void* argument) {
    return function(argument);
}

size_t osStackLeft() {
    const uintptr_t limit = __readgsqword(kStackBaseOffset) + kGuardBytes;
    const auto here = reinterpret_cast<uintptr_t>(__builtin_frame_address(0));
    return here > limit ? here - limit : 0;
}

int osStopMessagesStart(OsLastWords lastWords) {
    sayLastWords = lastWords;
    MSG message;
    PeekMessageA(&message, nullptr, 0, 0, PM_NOREMOVE);  // makes the queue
    return SetConsoleCtrlHandler(onConsoleEvent, TRUE) ? 0 : static_cast<int>(GetLastError());
}

void osRaiseIntegerDivisionFault() {
    RaiseException(EXCEPTION_INT_DIVIDE_BY_ZERO, EXCEPTION_NONCONTINUABLE, 0, nullptr);
    TerminateProcess(GetCurrentProcess(), EXCEPTION_INT_DIVIDE_BY_ZERO);
    __builtin_unreachable();
}
