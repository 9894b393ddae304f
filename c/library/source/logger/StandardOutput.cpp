#include "logger/StandardOutput.h"

#include <cstring>
#include <mutex>

#include "platform/clock.h"
#include "platform/console.h"

namespace {

constexpr size_t kBlockSize = 64 * 1024;

std::mutex outputLock;
char block[kBlockSize];
size_t blockUsed = 0;

enum class Terminal { Unknown, No, Yes };
Terminal terminal = Terminal::Unknown;

bool toTerminal() {
    if (terminal == Terminal::Unknown)
        terminal = osConsoleIsTerminal(OsOutput::Standard) ? Terminal::Yes : Terminal::No;
    return terminal == Terminal::Yes;
}

// What the system refuses is dropped: kept, it would be refused again and again.
bool writeOut(const char* data, size_t size) {
    return size == 0 || osConsoleWrite(OsOutput::Standard, data, size, nullptr) == 0;
}

bool flushBlock() {
    const size_t size = blockUsed;
    blockUsed = 0;
    return writeOut(block, size);
}

// The last resort for an end of the process that nobody flushed before.
struct FlushAtExit {
    ~FlushAtExit() { outputTryFlush(kExitPatience); }
    static constexpr unsigned kExitPatience = 1000;
};
FlushAtExit flushAtExit;

}  // namespace

void outputWrite(std::string_view bytes) {
    const std::lock_guard<std::mutex> hold(outputLock);
    if (bytes.size() > kBlockSize - blockUsed) flushBlock();
    if (bytes.size() >= kBlockSize) {
        writeOut(bytes.data(), bytes.size());
        return;
    }
    std::memcpy(block + blockUsed, bytes.data(), bytes.size());
    blockUsed += bytes.size();
    if (toTerminal() && bytes.find('\n') != std::string_view::npos) flushBlock();
}

bool outputFlush() {
    const std::lock_guard<std::mutex> hold(outputLock);
    return flushBlock();
}

bool outputTryFlush(unsigned milliseconds) {
    // The system's own clock, also where a test has put another in its place: the
    // other thread works in real time.
    unsigned waited = 0;
    while (!outputLock.try_lock()) {
        if (waited == milliseconds) return false;
        osSystemSleep(1);
        ++waited;
    }
    const std::lock_guard<std::mutex> hold(outputLock, std::adopt_lock);
    const size_t size = blockUsed;
    blockUsed = 0;
    return size == 0 ||
           osConsoleTryWrite(OsOutput::Standard, block, size, milliseconds - waited, nullptr) == 0;
}
