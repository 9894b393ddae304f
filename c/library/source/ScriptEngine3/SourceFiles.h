#pragma once

#include "ScriptEngine3Defs/ScriptEngineRecord.h"
#include "files/BasicFile.h"

// A source file that is being read.
struct OpenSource {
    Owned<String> path;     // full
    Owned<BasicFile> file;  // open for reading
    uint32_t index = 0;     // in the engine's `sources`
};

enum class SourceOpening { Open, PassOver, Failed };

// Works out where the file is, registers it, and opens it. A file that was
// registered before is to be passed over; a failure has been reported.
SourceOpening sourceOpen(ScriptEngine* engine, const String* path, const String* baseDirectory,
                         OpenSource* source);
