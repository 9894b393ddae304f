#include "platform/console.h"

#include <fcntl.h>
#include <limits.h>
#include <poll.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>

#include "platform/clock.h"

namespace {

int descriptorOf(OsOutput output) {
    return output == OsOutput::Standard ? STDOUT_FILENO : STDERR_FILENO;
}

// A terminal shared with others may have been set to not block by one of them.
bool waitUntilWritable(int descriptor, int milliseconds) {
    pollfd entry{descriptor, POLLOUT, 0};
    return poll(&entry, 1, milliseconds) != 0;
}

int writeAll(int descriptor, const char* data, size_t size, size_t* written) {
    size_t done = 0;
    int error = 0;
    while (done < size && error == 0) {
        const ssize_t count = write(descriptor, data + done, size - done);
        if (count >= 0)
            done += static_cast<size_t>(count);
        else if (errno == EAGAIN)
            waitUntilWritable(descriptor, -1);
        else if (errno != EINTR)
            error = errno;
    }
    if (written != nullptr) *written = done;
    return error;
}

}  // namespace

void osConsolePrepare() {
    // Opened for reading in the place of all three: the input is then at its end,
    // and an output that was closed still refuses what is written.
    for (int descriptor = 0; descriptor <= STDERR_FILENO; ++descriptor)
        if (fcntl(descriptor, F_GETFD) < 0 && errno == EBADF) (void)!open("/dev/null", O_RDONLY);
}

int osConsoleWrite(OsOutput output, const void* data, size_t size, size_t* written) {
    return writeAll(descriptorOf(output), static_cast<const char*>(data), size, written);
}

int osConsoleTryWrite(OsOutput output, const void* data, size_t size, uint32_t milliseconds,
                      size_t* written) {
    // A pipe that reports room takes this much without blocking.
    constexpr size_t kPiece = PIPE_BUF;
    const int descriptor = descriptorOf(output);
    const char* bytes = static_cast<const char*>(data);
    const uint64_t end = osSystemTicks() + milliseconds;
    size_t done = 0;
    int error = 0;
    while (done < size && error == 0) {
        const uint64_t now = osSystemTicks();
        if (!waitUntilWritable(descriptor, now < end ? static_cast<int>(end - now) : 0)) {
            error = ETIMEDOUT;
            break;
        }
        size_t count = 0;
        error = writeAll(descriptor, bytes + done, std::min(kPiece, size - done), &count);
        done += count;
    }
    if (written != nullptr) *written = done;
    return error;
}

bool osConsoleIsTerminal(OsOutput output) {
    return isatty(descriptorOf(output)) == 1;
}

int osConsoleRead(void* buffer, size_t size, size_t* got) {
    for (;;) {
        const ssize_t count = read(STDIN_FILENO, buffer, size);
        if (count >= 0) {
            *got = static_cast<size_t>(count);
            return 0;
        }
        const int error = errno;
        if (error == EAGAIN) {
            pollfd entry{STDIN_FILENO, POLLIN, 0};
            poll(&entry, 1, -1);
        } else if (error != EINTR) {
            return error;
        }
    }
}
