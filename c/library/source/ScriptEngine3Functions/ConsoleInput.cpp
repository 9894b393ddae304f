#include "ScriptEngine3Functions/ConsoleInput.h"

#include "platform/console.h"

namespace {

// What was read from the system and not yet asked for. Only the thread that
// runs the script reads.
struct InputBuffer {
    char bytes[4096];
    size_t start = 0;
    size_t end = 0;
};

InputBuffer input;

bool fill() {
    input.start = input.end = 0;
    return osConsoleRead(input.bytes, sizeof input.bytes, &input.end) == 0 && input.end > 0;
}

}  // namespace

bool inputReadLine(String* line, uint32_t limit) {
    stringClear(line);
    while (line->length < limit) {
        if (input.start == input.end && !fill()) break;
        const char c = input.bytes[input.start++];
        if (!stringAppendChar(line, c)) return false;
        if (c == '\n') break;
    }
    return line->length > 0;
}
