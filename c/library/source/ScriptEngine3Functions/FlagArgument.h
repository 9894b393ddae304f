#pragma once

#include "ScriptEngine3Defs/Arguments.h"

// The truth of an argument. A value without truth is reported with `complaint`.
// Gives `kDone`, or what the handler has to give back after a failure.
inline int readFlag(ScriptEngine* engine, ScriptBlock* block, Arguments* in, uint32_t index,
                    const char* complaint, bool* flag) {
    const ScriptObject* object = in->any(index);
    if (object == nullptr) return in->status();
    const ScriptTruth truth = scriptObjectGetBool(engine, object, block);
    *flag = truth == kTrue;
    if (truth != kNoTruth) return kDone;
    logError(engine->logger, "%s", complaint);
    return kError;
}

// The same of an argument that a call may leave out: the flag stays as it was.
inline int readOptionalFlag(ScriptEngine* engine, ScriptBlock* block, Arguments* in, uint32_t index,
                            const char* complaint, bool* flag) {
    if (!in->ok() || index >= in->count()) return in->status();
    return readFlag(engine, block, in, index, complaint, flag);
}
