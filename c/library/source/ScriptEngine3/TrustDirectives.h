#pragma once

#include "ScriptEngine3/SourceReader.h"

// The directives that say who may run a script, and whether it is what was
// signed. They act while the file is read, so that a refused script never starts.

// A directive that is being carried out.
struct TrustDirective {
    ScriptEngine* engine;
    SourceReader* reader;
    const SourceStatement* statement;
    const String* path;    // of the file, full
    uint32_t sourceIndex;  // of the file, in the engine's `sources`
};

// Carry out `user`, `group`, `limit` and `signature`. False, after a message,
// when the script must not run.
bool trustUser(const TrustDirective& directive);
bool trustGroup(const TrustDirective& directive);
bool trustLimit(const TrustDirective& directive);
bool trustSignature(const TrustDirective& directive);

// Lets the reader hash for its file what it reads next, if the file is signed:
// for when other files have been read meanwhile.
void trustHashLines(ScriptEngine* engine, SourceReader* reader, uint32_t sourceIndex);

// At the end of a file: compares what its lines give with its signature and notes
// that it is signed. True also for a file without one; false after a message.
bool trustSettle(ScriptEngine* engine, const String* path, uint32_t sourceIndex);
