#include "paths/PathError.h"

#include <string>

#include "platform/files.h"
#include "strings/StringFormat.h"

namespace {

struct LastError {
    uint32_t code = kPathDone;
    int systemError = 0;
};
thread_local LastError lastError;

}  // namespace

uint32_t pathLastErrorCode() {
    return lastError.code;
}

String* pathLastErrorText() {
    if (lastError.code != kPathSystem) return nullptr;
    std::string text = osErrorText(lastError.systemError);
    if (text.empty()) return stringFromText("unknown");
    return stringFormatNew("Windows(%u): %s", static_cast<uint32_t>(lastError.systemError), text);
}

void pathClearError() {
    lastError = LastError();
}

bool pathFail(PathErrorCode code) {
    lastError = {code, 0};
    return false;
}

bool pathFailSystem(int systemError) {
    lastError = {kPathSystem, systemError};
    return false;
}

PathErrorKeeper::PathErrorKeeper() : code_(lastError.code), systemError_(lastError.systemError) {}

PathErrorKeeper::~PathErrorKeeper() {
    lastError = {code_, systemError_};
}
