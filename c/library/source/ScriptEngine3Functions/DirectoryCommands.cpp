#include "ScriptEngine3Functions/DirectoryCommands.h"

#include "ScriptEngine3Functions/ContainerArguments.h"
#include "paths/DirectoryList.h"
#include "paths/PathError.h"
#include "paths/PathOperations.h"
#include "paths/Paths.h"

namespace {

// What fails here is an answer, not an error: a script asks whether it worked.
int answer(bool done) {
    return done ? kDone : kNegative;
}

template <bool (*kOperation)(const String*)>
int onPath(ScriptEngine* engine, ScriptBlock* block, ScriptArgs* args, int) {
    Arguments in(engine, block, args);
    const String* path = in.string(0);
    return in.ok() ? answer(kOperation(path)) : in.status();
}

template <bool (*kOperation)(const String*, const String*)>
int onPaths(ScriptEngine* engine, ScriptBlock* block, ScriptArgs* args, int) {
    Arguments in(engine, block, args);
    const String* first = in.string(0);
    const String* second = in.string(1);
    return in.ok() ? answer(kOperation(first, second)) : in.status();
}

// Commands overwrite, take all that is in a directory, and mind no read-only mark.
template <bool (*kOperation)(const String*, const String*, bool)>
bool overwriting(const String* source, const String* target) {
    return kOperation(source, target, true);
}
bool deleteForced(const String* path) {
    return pathDelete(path, true);
}
bool removeWhole(const String* path) {
    return pathRemoveDirectory(path, true, true);
}

int scriptEngineGetCD(ScriptEngine* engine, ScriptBlock* block, ScriptArgs* args, int) {
    Arguments in(engine, block, args);
    ScriptObject* target = in.retyped(0, kTypeString);
    if (!in.ok()) return in.status();
    Owned<String> path(pathCurrentDirectory());
    if (path && stringTake(&target->string, path.get())) return kDone;
    return commandError(engine, "scriptEngineGetCD: Failed to get current dir");
}

struct Listing {
    bool directories;
    const char* name;
};
constexpr Listing kFiles = {false, "scriptEngineGetFiles"};
constexpr Listing kSubDirs = {true, "scriptEngineGetSubDirs"};

int listingOutOfMemory(ScriptEngine* engine, const Listing& listing) {
    commandOutOfMemory(engine, listing.name);
    return kError;
}

bool addName(ScriptObject* container, std::string_view name) {
    Owned<ScriptObject> made(scriptObjectCreateString(name));
    if (!made || !containerAdd(container, made.get())) return false;
    made.release();
    return true;
}

template <const Listing& kListing>
int listEntries(ScriptEngine* engine, ScriptBlock* block, ScriptArgs* args, int) {
    Arguments in(engine, block, args);
    const String* directory = in.string(0);
    const String* pattern = in.string(1);
    ScriptObject* target = in.target(2);
    if (!in.ok()) return in.status();
    const ScriptType type = target->type;
    // Both commands complain by the name of the first.
    if (type != kTypeVector && type != kTypeList && type != kTypeSet)
        return commandError(
            engine, "scriptEngineGetFiles: Third parameter must be a vector, a list or a set");
    DirectoryList list;
    if (!pathListDirectory(directory, pattern, &list)) {
        const bool noMemory = pathLastErrorCode() == kPathNoMemory;
        return noMemory ? listingOutOfMemory(engine, kListing) : kNegative;
    }
    if (list.unnamed() != 0)
        logWarning(engine->logger, "%s: Left out names with a separator in them: %u of \"%S\"",
                   kListing.name, list.unnamed(), directory);
    list.sort();
    for (uint32_t at = 0; at < list.size(); ++at) {
        const DirectoryEntry entry = list[at];
        if (entry.isDirectory == kListing.directories && !addName(target, entry.name))
            return listingOutOfMemory(engine, kListing);
    }
    return kDone;
}

// In the columns of the table: the command needs a signed file.
constexpr bool kSigned = true;

constexpr CommandRow kDirectoryCommands[] = {
    // name  handler  min  max  targets
    {"cd", onPath<pathSetCurrentDirectory>, 1, 1},
    {"getcd", scriptEngineGetCD, 1, 1, "1"},
    {"getfiles", listEntries<kFiles>, 3, 3, "3"},
    {"getsubdirs", listEntries<kSubDirs>, 3, 3, "3"},
    {"copy", onPaths<overwriting<pathCopy>>, 2, 2, nullptr, kInBlock, false, kSigned},
    {"move", onPaths<overwriting<pathMove>>, 2, 2, nullptr, kInBlock, false, kSigned},
    {"delete", onPath<deleteForced>, 1, 1, nullptr, kInBlock, false, kSigned},
    {"makedir", onPath<pathMakeDirectory>, 1, 1, nullptr, kInBlock, false, kSigned},
    {"copydir", onPaths<overwriting<pathCopyDirectory>>, 2, 2, nullptr, kInBlock, false, kSigned},
    {"movedir", onPaths<overwriting<pathMoveDirectory>>, 2, 2, nullptr, kInBlock, false, kSigned},
    {"deldir", onPath<removeWhole>, 1, 1, nullptr, kInBlock, false, kSigned},
    {"exists", onPath<pathExists>, 1, 1},
    {"isdiff", onPaths<pathAreSameFile>, 2, 2},
};

}  // namespace

std::span<const CommandRow> directoryCommands() {
    return kDirectoryCommands;
}
