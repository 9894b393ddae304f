#pragma once

#include <cstdint>
#include <string_view>

#include "files/BasicFile.h"
#include "files/FileStream.h"

// What the sources of the bundle module share; not for others.

constexpr std::string_view kBundlePrefix = "$Quorel_Bundle_v";
constexpr int32_t kBundleVersion = 1;
constexpr std::string_view kBundleHeader = "$Quorel_Bundle_v1\n";

// In front of a bundle that was attached to another file.
constexpr std::string_view kBundleMaker = "$QuorelBundleMaker";
constexpr std::string_view kBundleMark = "\\BUNDLE:";
// Belongs to the marks, though no operation here writes or reads it.
constexpr std::string_view kBundleFileMarker = "$QuorelFileMarker";

// What is moved at once: it goes past the block of the stream.
constexpr uint32_t kBundleBlock = 4 * kFileBlockSize;

// Logs a message with a file's name and a status; false, to be given back.
inline bool bundleFail(Logger* logger, const char* message, const String* name, FileStatus status) {
    logError(logger, message, name, status);
    return false;
}

// The same when memory ran out.
inline bool bundleOutOfMemory(Logger* logger, const char* message,
                              std::source_location where = std::source_location::current()) {
    logError(logger, message);
    logLocation(logger, kLogError, where);
    return false;
}

// Opens a file that is to be taken in, for reading. What is no file, a pipe or a
// device, counts as one that cannot be opened.
FileStatus bundleOpenSource(BasicFile* source);

// Writes bytes that are given as a view.
inline FileStatus bundleWriteView(BasicFile* file, std::string_view bytes) {
    return bfileWriteVal(file, bytes.data(), static_cast<uint32_t>(bytes.size()));
}

// Whether `header`, the first bytes of the file, opens a bundle of the known
// version; what is wrong is logged in the name of `function`. Changes `header`.
bool bundleHeaderIsValid(String* header, const String* name, const char* function, Logger* logger);

// Whether both paths lead to one file, which then must not be read and written at once.
bool bundleIsSameFile(const String* a, const String* b);

// The name of the plain bundle behind a name: what ends in ".gz", in any letters
// with `anyCase`, loses that. The caller owns it; null when memory runs out.
String* bundlePlainName(const String* name, bool anyCase);
