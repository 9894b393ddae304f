#include "ScriptEngine3Functions/PathCommands.h"

#include <cmath>

#include "ScriptEngine3Functions/ContainerArguments.h"
#include "paths/PathOperations.h"
#include "paths/Paths.h"
#include "strings/StringEdit.h"
#include "strings/StringNumbers.h"

namespace {

constexpr uint32_t kExecuteBits = 0111;

int scriptEngineChMod(ScriptEngine* engine, ScriptBlock* block, ScriptArgs* args, int) {
    Arguments in(engine, block, args);
    const String* path = in.string(0);
    const double mode = in.number(1);
    if (!in.ok()) return in.status();
    return pathSetMode(path, numberToUInt32(std::round(mode))) ? kDone : kNegative;
}

int scriptEngineExeMod(ScriptEngine* engine, ScriptBlock* block, ScriptArgs* args, int) {
    Arguments in(engine, block, args);
    const String* path = in.string(0);
    if (!in.ok()) return in.status();
    return pathSetMode(path, pathMode(path) | kExecuteBits) ? kDone : kNegative;
}

int scriptEngineTempFile(ScriptEngine* engine, ScriptBlock* block, ScriptArgs* args, int) {
    Arguments in(engine, block, args);
    const String* directory = in.string(0);
    const String* name = in.string(1);
    ScriptObject* target = in.retyped(2, kTypeString);
    if (!in.ok()) return in.status();
    Owned<String> path(stringClone(directory));
    if (pathEnsureTrailingSeparator(path.get()) && stringAppend(path.get(), name) &&
        pathMakeUnique(path.get(), true))
        stringTake(&target->string, path.get());
    return kDone;
}

struct PathPart {
    String* (*part)(const String* path);
    const char* name;
};
constexpr PathPart kDirName = {pathDirectoryPart, "scriptEngineGetDirName"};
constexpr PathPart kBaseName = {pathBaseName, "scriptEngineGetBaseName"};

template <const PathPart& kPart>
int partOfPath(ScriptEngine* engine, ScriptBlock* block, ScriptArgs* args, int) {
    Arguments in(engine, block, args);
    const String* path = in.string(0);
    ScriptObject* target = in.retyped(1, kTypeString);
    if (!in.ok()) return in.status();
    Owned<String> part(kPart.part(path));
    if (part && stringTake(&target->string, part.get())) return kDone;
    return commandOutOfMemory(engine, kPart.name);
}

int scriptEngineGetSuffix(ScriptEngine* engine, ScriptBlock* block, ScriptArgs* args, int) {
    Arguments in(engine, block, args);
    const String* path = in.string(0);
    ScriptObject* target = in.retyped(1, kTypeString);
    if (!in.ok()) return in.status();
    Owned<String> suffix(pathSuffix(path));
    stringTake(&target->string, suffix.get());
    return kDone;
}

int scriptEngineFindPath(ScriptEngine* engine, ScriptBlock* block, ScriptArgs* args, int) {
    Arguments in(engine, block, args);
    const String* name = in.string(0);
    ScriptObject* target = in.retyped(1, kTypeString);
    if (!in.ok()) return in.status();
    return pathFindInPath(name, &target->string) ? kDone : kNegative;
}

// In the columns of the table: the command needs a signed file.
constexpr bool kSigned = true;

constexpr CommandRow kPathCommands[] = {
    // name  handler  min  max  targets
    {"chmod", scriptEngineChMod, 2, 2, nullptr, kInBlock, false, kSigned},
    {"exemod", scriptEngineExeMod, 1, 1, nullptr, kInBlock, false, kSigned},
    {"tempfile", scriptEngineTempFile, 3, 3, "3"},
    {"getdirname", partOfPath<kDirName>, 2, 2, "2"},
    // What stands behind the target is taken and not looked at.
    {"getbasename", partOfPath<kBaseName>, 2, 12, "2"},
    {"getsuffix", scriptEngineGetSuffix, 2, 2, "2"},
    {"findpath", scriptEngineFindPath, 2, 2, "2"},
};

}  // namespace

std::span<const CommandRow> pathCommands() {
    return kPathCommands;
}
