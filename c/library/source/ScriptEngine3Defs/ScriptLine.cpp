#include "ScriptEngine3Defs/ScriptLine.h"

#include "containers/Memory.h"

ScriptLine* scriptLineCreate(uint32_t source, uint32_t lineNumber, const CommandRow* command,
                             int32_t block, const ScriptArg* args, uint32_t count) {
    auto* line = static_cast<ScriptLine*>(memAlloc(sizeof(ScriptLine) + count * sizeof(ScriptArg)));
    if (line == nullptr) return nullptr;
    line->source = source;
    line->lineNumber = lineNumber;
    line->handler = command->handler;
    line->block = block;
    line->needsSignature = command->needsSignature;
    line->flow = command->flow;
    line->args = {reinterpret_cast<ScriptArg*>(line + 1), count, nullptr};
    for (uint32_t at = 0; at < count; ++at) line->args.items[at] = args[at];
    return line;
}

void scriptLineDestroy(ScriptLine** line) {
    memFree(line);
}
