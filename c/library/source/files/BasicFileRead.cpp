#include <algorithm>
#include <cstring>

#include "files/BasicFile.h"
#include "files/FileStream.h"

namespace {

// Any set of bytes at which a text read stops. Bytes above 127 never match: a
// stop counts as signed and a byte of the file does not.
class StopSet {
  public:
    explicit StopSet(const char* stops) {
        for (; stops != nullptr && *stops != 0; ++stops) {
            const auto byte = static_cast<unsigned char>(*stops);
            if (byte < 128) bits_[byte / 64] |= uint64_t{1} << byte % 64;
        }
    }

    bool has(char c) const {
        const auto byte = static_cast<unsigned char>(c);
        return byte < 128 && (bits_[byte / 64] >> byte % 64 & 1) != 0;
    }

    // Place of the first stop, or the length of the text.
    size_t find(std::string_view text) const {
        size_t at = 0;
        while (at < text.size() && !has(text[at])) ++at;
        return at;
    }

  private:
    uint64_t bits_[2] = {0, 0};
};

// The set of one such byte.
class OneStop {
  public:
    explicit OneStop(char stop) : stop_(stop) {}
    bool has(char c) const { return c == stop_; }
    size_t find(std::string_view text) const { return std::min(text.find(stop_), text.size()); }

  private:
    char stop_;
};

// Keeps the record's line counters over the bytes that one read passes.
class LineCounter {
  public:
    // `atStops` tells that a newline can only be the last byte that is passed.
    LineCounter(BasicFile* file, bool atStops) : file_(file), atStops_(atStops) {
        file->recordLine = file->line + 1;
    }

    void pass(std::string_view text) {
        size_t at = 0;
        for (; at < text.size() && !textSeen_; ++at) passBefore(text[at]);
        text.remove_prefix(at);
        if (atStops_)
            file_->line += text.ends_with('\n') ? 1 : 0;
        else
            file_->line += static_cast<uint32_t>(std::count(text.begin(), text.end(), '\n'));
    }

  private:
    // Before the text starts, the record moves on with each newline.
    void passBefore(char c) {
        if (c == '\n')
            file_->recordLine = ++file_->line;
        else
            textSeen_ = static_cast<unsigned char>(c) > ' ';
    }

    BasicFile* file_;
    bool atStops_;
    bool textSeen_ = false;
};

bool appendWithoutReturns(String* out, std::string_view text) {
    while (!text.empty()) {
        const size_t end = std::min(text.find('\r'), text.size());
        if (!stringAppendView(out, text.substr(0, end))) return false;
        text.remove_prefix(std::min(end + 1, text.size()));
    }
    return true;
}

// Logs a message with name and record, and the place of the call.
FileStatus failed(BasicFile* file, FileStatus status, const char* message,
                  std::source_location where = std::source_location::current()) {
    logError(file->logger, message, file->name, file->identity);
    logLocation(file->logger, kLogError, where);
    return status;
}

// What a text read gives when no byte is left.
FileStatus endOfText(BasicFile* file, const String* out) {
    file->atEnd = 1;
    if (file->stream->failed) {
        file->stream->failed = false;
        return failed(file, kFileShort, "bfileReadUntilFirst: #::204 - file %i");
    }
    return out->length > 0 ? kFileDone : kFileAtEnd;
}

// Reads in steps that double, so that a huge `count` costs what the file holds.
FileStatus readInto(BasicFile* file, String* out, uint32_t count) {
    stringClear(out);
    while (out->length < count) {
        const uint32_t left = count - out->length;
        const uint32_t step = std::min<uint32_t>(
            left, std::max<uint32_t>(out->length, static_cast<uint32_t>(kFileBlockSize)));
        char* place = stringMakeRoom(out, step);
        if (place == nullptr) return kFileNoMemory;
        const size_t got = fileStreamRead(file->stream, place, step);
        stringSetLength(out, out->length + static_cast<uint32_t>(got));
        if (got < step) break;
    }
    return kFileDone;
}

}  // namespace

FileStatus bfileRead(BasicFile* file, String* out, uint32_t count) {
    if (file == nullptr) return kFileNull;
    if (out == nullptr) {
        logError(file->logger, "bfileRead: #::10");
        logLocation(file->logger, kLogError);
        return kFileNull;
    }
    if (!bfileIsReadable(file)) return failed(file, kFileWrongMode, "bfileRead: #::223 - file %i");
    if (readInto(file, out, count) != kFileDone) {
        logError(file->logger, "bfileRead: #::100");
        logLocation(file->logger, kLogError);
        return kFileNoMemory;
    }
    if (file->stream->ended) file->atEnd = 1;
    if (file->stream->failed) {
        // The record counts as at its end from here on, so that loops over it end.
        file->stream->failed = false;
        logDebug(file->logger, "bfileRead: #::225 - %i", file->name, file->identity);
        return kFileShort;
    }
    return file->atEnd != 0 && out->length == 0 ? kFileAtEnd : kFileDone;
}

namespace {

template <typename Stops>
FileStatus readText(BasicFile* file, String* out, const Stops& stops, char* hit, uint32_t limit) {
    if (hit != nullptr) *hit = 0;
    if (file == nullptr || out == nullptr) return kFileNull;
    if (!bfileIsReadable(file))
        return failed(file, kFileWrongMode, "bfileReadUntilFirst: #::223 - file %i");
    stringClear(out);
    LineCounter lines(file, stops.has('\n'));
    FileStream* stream = file->stream;
    while (fileStreamFill(stream)) {
        // No more than may still be taken: so the limit is reached at the end of a
        // piece or not at all.
        const uint32_t room = std::max(limit - out->length, 1u);
        const std::string_view piece = fileStreamReady(stream).substr(0, room);
        const size_t stop = stops.find(piece);
        const bool stopped = stop < piece.size();
        lines.pass(piece.substr(0, stopped ? stop + 1 : stop));
        const bool whole = appendWithoutReturns(out, piece.substr(0, stop));
        const char byte = stopped ? piece[stop] : 0;
        fileStreamTake(stream, stopped ? stop + 1 : stop);
        if (!whole) return failed(file, kFileNoMemory, "bfileReadUntilFirst: #::100");
        if (stopped && hit != nullptr) *hit = byte;
        if (stopped) return kFileDone;
        if (limit != kNoLimit && out->length >= limit) return kFileLimit;
    }
    return endOfText(file, out);
}

}  // namespace

FileStatus bfileReadUntilFirst(BasicFile* file, String* out, const char* stops, char* hit,
                               uint32_t limit) {
    const bool isOne = stops != nullptr && static_cast<signed char>(stops[0]) > 0 && stops[1] == 0;
    if (isOne) return readText(file, out, OneStop(stops[0]), hit, limit);
    return readText(file, out, StopSet(stops), hit, limit);
}

FileStatus bfileReadUntil(BasicFile* file, String* out, char stop, char* hit, uint32_t limit) {
    const char stops[] = {stop, 0};
    return bfileReadUntilFirst(file, out, stops, hit, limit);
}

FileStatus bfileReadLine(BasicFile* file, String* out, uint32_t limit) {
    return readText(file, out, OneStop('\n'), nullptr, limit);
}
