#include "ScriptEngine3/TrustDirectives.h"

#include "ScriptEngine3/ScriptLimits.h"
#include "ScriptEngine3Defs/ScriptHash.h"

namespace {

bool outOfMemory(ScriptEngine* engine) {
    logError(engine->logger, "scriptEngineParse: #::100");
    logLocation(engine->logger, kLogError);
    return false;
}

bool refuse(const TrustDirective& directive, const char* format, const String* user) {
    logError(directive.engine->logger, format, user, directive.reader->lineNumber(),
             directive.path);
    return false;
}

// Adds the value under the file's number, whether there is one already or not:
// which of two counts is then a matter of the tree. Ends it when it cannot.
bool addTo(Map** map, uint32_t sourceIndex, void* value, DestroyFunction destroy) {
    if (*map == nullptr) *map = mapCreate(compareUnsigned);
    void* key = keyFromUnsigned(sourceIndex);
    if (value != nullptr && mapInsert(*map, key, value)) return true;
    if (key != nullptr) keyDestroy(&key);
    if (value != nullptr) destroy(&value);
    return false;
}

}  // namespace

bool trustUser(const TrustDirective& directive) {
    ScriptUser user;
    if (!user.readName()) return outOfMemory(directive.engine);
    if (scriptUserIsNamed(user, directive.statement->args)) return true;
    return refuse(directive,
                  "scriptEngineParse: User \"%S\" is not allowed to execute this script! See line "
                  "%u in file \"%S\"",
                  user.name.get());
}

bool trustGroup(const TrustDirective& directive) {
    ScriptUser user;
    if (!user.readName() || !user.readGroups()) return outOfMemory(directive.engine);
    if (scriptGroupIsNamed(user, directive.statement->args)) return true;
    return refuse(directive,
                  "scriptEngineParse: User \"%S\" is not part of a group that is allowed to "
                  "execute this script! See line %u in file \"%S\"",
                  user.name.get());
}

bool trustLimit(const TrustDirective& directive) {
    Logger* logger = directive.engine->logger;
    const uint32_t lineNumber = directive.reader->lineNumber();
    switch (scriptEngineCheckLimits(directive.statement->args)) {
        case LimitCheck::None:
            logVerbose(logger,
                       "scriptEngineParse: Limitations do not apply, proceeding with the "
                       "execution of this script! See line %u in file \"%S\"",
                       lineNumber, directive.path);
            return true;
        case LimitCheck::Applies:
            logError(logger,
                     "scriptEngineParse: Limitations apply, preventing the execution of this "
                     "script! See line %u in file \"%S\"",
                     lineNumber, directive.path);
            return false;
        case LimitCheck::Failed:
            break;
    }
    return outOfMemory(directive.engine);
}

bool trustSignature(const TrustDirective& directive) {
    ParseTables* tables = directive.engine->parseTables;
    const uint32_t index = directive.sourceIndex;
    if (!addTo(&tables->signatures, index, stringFromView(directive.statement->args[0]),
               stringDestroyElement) ||
        !addTo(&tables->hashes, index, scriptHashCreate(kHashMd5), scriptHashDestroyElement))
        return outOfMemory(directive.engine);
    trustHashLines(directive.engine, directive.reader, index);
    return true;
}

void trustHashLines(ScriptEngine* engine, SourceReader* reader, uint32_t sourceIndex) {
    reader->hashTo(static_cast<HashState*>(mapGet(engine->parseTables->hashes, &sourceIndex)));
}

bool trustSettle(ScriptEngine* engine, const String* path, uint32_t sourceIndex) {
    const ParseTables* tables = engine->parseTables;
    const auto* hash = static_cast<HashState*>(mapGet(tables->hashes, &sourceIndex));
    if (hash == nullptr) return true;
    const auto* signature = static_cast<String*>(mapGet(tables->signatures, &sourceIndex));
    const int variant = scriptHashVariantOf(signature);
    LocalString fitting;
    if (!scriptHashFinish(hash, variant, &fitting)) return outOfMemory(engine);
    // A variant that does not exist vouches for nothing, whatever its text.
    if (variant != kVariantUnknown && stringView(signature) == stringView(&fitting)) {
        engine->sources[sourceIndex].isSigned = 1;
        return true;
    }
    logError(engine->logger, "scriptEngineParse: #::1147", path);
    return false;
}
