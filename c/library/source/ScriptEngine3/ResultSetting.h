#pragma once

#include "ScriptEngine3Defs/ScriptEngineRecord.h"

// The result variables, as the statements set them. Those that no script names are
// left alone.

// Sets one that a script has made something else of, as far as it takes the number.
[[gnu::cold]] void setOtherResult(ScriptEngine* engine, ScriptObject* object, bool value);

// Sets one if a script names it: a number, unless a script has retyped it.
inline void setResult(ScriptEngine* engine, NamedResult name, ScriptObject* object, bool value) {
    if ((engine->namedResults & name) == 0) return;
    if (object->type == kTypeNumber) [[likely]]
        object->number = value;
    else
        setOtherResult(engine, object, value);
}

inline void setSuccess(ScriptEngine* engine, bool value) {
    setResult(engine, kSuccessNamed, engine->results.success, value);
}
inline void setError(ScriptEngine* engine, bool value) {
    setResult(engine, kErrorNamed, engine->results.error, value);
}
inline void setInvalidArgs(ScriptEngine* engine, bool value) {
    setResult(engine, kInvalidArgsNamed, engine->results.invalidArgs, value);
}
inline void setOutOfMemory(ScriptEngine* engine, bool value) {
    setResult(engine, kOutOfMemoryNamed, engine->results.outOfMemory, value);
}

// Sets `success` and clears the others: at the beginning of a statement, and at the
// end of an `eval` that succeeded.
inline void setResults(ScriptEngine* engine, bool success) {
    if (engine->namedResults == 0) return;
    setSuccess(engine, success);
    if (engine->namedResults == kSuccessNamed) return;
    setError(engine, false);
    setInvalidArgs(engine, false);
    setOutOfMemory(engine, false);
}
