#include "files/FileStream.h"

#include <algorithm>
#include <atomic>
#include <cstring>

#include "logger/StandardOutput.h"

static_assert(kFileRead == kOsOpenRead && kFileWrite == kOsOpenWrite &&
              kFileAppend == kOsOpenAppend && kFileReadWrite == kOsOpenReadWrite &&
              kFileWriteRead == kOsOpenWriteRead && kFileAppendRead == kOsOpenAppendRead);

namespace {

// The systems differ in how much one read may ask for.
constexpr size_t kLargestRead = 256 * kFileBlockSize;

bool appends(const FileStream* stream) {
    return stream->mode == kFileAppend || stream->mode == kFileAppendRead;
}

// Drops what was read ahead and puts the file's place where the reader's was.
bool turnToWriting(FileStream* stream) {
    const auto ahead = static_cast<int64_t>(stream->readEnd - stream->readAt);
    if (ahead > 0 && !appends(stream) &&
        osFileSeek(stream->file, -ahead, OsSeek::Current, nullptr) != 0)
        return false;
    stream->readAt = stream->readEnd = 0;
    stream->ended = stream->failed = false;
    return true;
}

// Before the system is asked for what may take its time.
void mayWait(bool waits) {
    if (waits) outputFlush();
}

// One read of the system's into `out`. Notes the end and a failure.
size_t readOnce(FileStream* stream, char* out, size_t count) {
    size_t got = 0;
    mayWait(stream->waits);
    stream->failed = osFileRead(stream->file, out, count, &got) != 0;
    if (stream->failed) got = 0;
    if (got == 0) stream->ended = true;
    return got;
}

// Whether a read may be tried: pending bytes must be in the file first.
bool turnToReading(FileStream* stream) {
    if (stream->ended) return false;
    if (fileStreamFlush(stream)) return true;
    stream->ended = stream->failed = true;
    return false;
}

}  // namespace

FileStatus fileStreamOpen(std::string_view name, uint32_t mode, FileStream** stream) {
    auto* made = static_cast<FileStream*>(memAlloc(sizeof(FileStream)));
    if (made == nullptr) return kFileNoMemory;
    // The block stays as it comes: clearing it would cost more than a small file's reading.
    std::memset(static_cast<void*>(made), 0, offsetof(FileStream, block));
    made->waits = osPathWaits(name);
    mayWait(made->waits);
    if (osFileOpen(name, mode, &made->file) != 0) {
        memFree(&made);
        return kFileCannotOpen;
    }
    made->mode = mode;
    made->records = 1;
    made->open = true;
    *stream = made;
    return kFileDone;
}

void fileStreamShare(FileStream* stream) {
    if (stream != nullptr) ++stream->records;
}

bool fileStreamRelease(FileStream** stream) {
    if (stream == nullptr || *stream == nullptr) return true;
    FileStream* held = *stream;
    *stream = nullptr;
    if (--held->records > 0) return true;
    const bool whole = fileStreamClose(held);
    if (!whole && held->file != kOsNoFile) osFileClose(held->file);
    memFree(&held);
    return whole;
}

bool fileStreamClose(FileStream* stream) {
    if (!stream->open) return true;
    if (stream->file == kOsNoFile || !fileStreamFlush(stream)) return false;
    const OsFile file = stream->file;
    stream->file = kOsNoFile;
    if (osFileClose(file) != 0) return false;
    stream->open = false;
    return true;
}

bool fileStreamFill(FileStream* stream) {
    if (stream->readAt < stream->readEnd) return true;
    if (!turnToReading(stream)) return false;
    stream->readAt = 0;
    stream->readEnd = readOnce(stream, stream->block, kFileBlockSize);
    return stream->readEnd > 0;
}

size_t fileStreamRead(FileStream* stream, char* out, size_t count) {
    size_t done = 0;
    while (done < count) {
        const std::string_view ready = fileStreamReady(stream);
        if (!ready.empty()) {
            const size_t part = std::min(count - done, ready.size());
            std::memcpy(out + done, ready.data(), part);
            fileStreamTake(stream, part);
            done += part;
        } else if (count - done >= kFileBlockSize) {
            if (!turnToReading(stream)) break;
            const size_t got = readOnce(stream, out + done, std::min(count - done, kLargestRead));
            if (got == 0) break;
            done += got;
        } else if (!fileStreamFill(stream)) {
            break;
        }
    }
    return done;
}

size_t fileStreamWrite(FileStream* stream, const char* data, size_t count) {
    if (!turnToWriting(stream)) return 0;
    if (count > kFileBlockSize - stream->pending && !fileStreamFlush(stream)) return 0;
    if (count >= kFileBlockSize) {
        size_t written = 0;
        mayWait(stream->waits);
        osFileWrite(stream->file, data, count, &written);
        return written;
    }
    std::memcpy(stream->block + stream->pending, data, count);
    stream->pending += count;
    return count;
}

bool fileStreamFlush(FileStream* stream) {
    if (stream->pending == 0) return true;
    size_t written = 0;
    mayWait(stream->waits);
    const int error = osFileWrite(stream->file, stream->block, stream->pending, &written);
    stream->pending -= written;
    std::memmove(stream->block, stream->block + written, stream->pending);
    return error == 0;
}

uint32_t fileNextIdentity() {
    static std::atomic<uint32_t> last{0};
    return last.fetch_add(1, std::memory_order_relaxed) + 1;
}
