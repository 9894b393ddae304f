#include "ScriptEngine3Defs/ScriptEngineRecord.h"

uint32_t scriptVarIdCounter = 0;
GrowArray<ScriptObject*> scriptTemporaries;

namespace {

constexpr uint32_t kResultVars = 4;

uint32_t handOutId(ParseTables* tables) {
    if (tables->lastVarId + 1 == kNoVariable) return kNoVariable;
    const uint32_t id = ++tables->lastVarId;
    if (id >= scriptVarIdCounter) scriptVarIdCounter = id + 1;
    return id;
}

}  // namespace

uint32_t scriptVarNameToId(ParseTables* tables, std::string_view name) {
    if (tables == nullptr || !scriptObjectIsValidName(name)) return kNoVariable;
    const uint32_t known = tables->varIds.find(name);
    if (known != NameTable::kAbsent) {
        const uint32_t result = known - tables->firstResultVar;
        if (result < kResultVars) tables->namedResults |= static_cast<uint8_t>(1 << result);
        return known;
    }
    return tables->varIds.add(name, tables->lastVarId + 1) ? handOutId(tables) : kNoVariable;
}

uint32_t scriptHiddenVarId(ParseTables* tables) {
    return tables == nullptr ? kNoVariable : handOutId(tables);
}

uint32_t scriptAnonymousVarId() {
    return scriptVarIdCounter == kNoVariable ? kNoVariable : ++scriptVarIdCounter;
}

bool scriptTemporariesAdd(ScriptObject* object) {
    if (scriptTemporaries.push(object)) return true;
    scriptObjectDestroy(&object);
    return false;
}

void scriptTemporariesFlush() {
    for (ScriptObject*& object : scriptTemporaries) scriptObjectDestroy(&object);
    scriptTemporaries.clear();
}
