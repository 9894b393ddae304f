#include "ScriptEngine3Defs/VectorElements.h"
#include "ScriptEngine3Expressions/OperandHelp.h"
#include "ScriptEngine3Expressions/Operations.h"
#include "containers/Map.h"
#include "strings/StringNumbers.h"

namespace {

constexpr char kName[] = "evaluateOf";

ScriptObject* ofMap(ScriptEngine* engine, ScriptObject* key, ScriptObject* map) {
    auto* value = static_cast<ScriptObject*>(mapGet(map->map.map, key));
    if (value != nullptr) return scriptObjectClone(value);
    logError(engine->logger,
             "evaluateOf: Invalid left hand operator (left hand operator's value is not a member "
             "of the right hand map)");
    return nullptr;
}

// The number on the left as an index: truncated, then taken as unsigned.
bool indexOf(ScriptEngine* engine, ScriptObject* left, uint32_t* index) {
    if (!operandResolve(engine, kName, "Invalid left hand operand pointer", &left)) return false;
    if (left->type != kTypeNumber) {
        logError(engine->logger, "evaluateOf: Left hand operand must be number");
        return false;
    }
    *index = static_cast<uint32_t>(numberToInt64(left->number));
    return true;
}

ScriptObject* ofVector(ScriptEngine* engine, ScriptObject* left, ScriptObject* right) {
    uint32_t index;
    if (!indexOf(engine, left, &index)) return nullptr;
    ScriptObject room;
    const ScriptObject* element = scriptVectorSeen(right, index, &room);
    if (element != nullptr) return scriptObjectClone(element);
    logError(engine->logger,
             "evaluateOf: Invalid left hand operand (index out of bounds - %u >= %u)", index,
             scriptObjectGetSize(right));
    return nullptr;
}

ScriptObject* ofString(ScriptEngine* engine, ScriptObject* left, ScriptObject* right) {
    uint32_t index;
    if (!indexOf(engine, left, &index)) return nullptr;
    const std::string_view text = stringView(&right->string);
    return operandString(engine, kName,
                         index < text.size() ? text.substr(index, 1) : std::string_view());
}

}  // namespace

ScriptObject* evaluateOf(ScriptEngine* engine, ScriptBlock*, ScriptObject* left,
                         ScriptObject* right) {
    if (!operandResolve(engine, kName, "Invalid right operand pointer", &right)) return nullptr;
    switch (right->type) {
        case kTypeMap:
            return ofMap(engine, left, right);
        case kTypeVector:
            return ofVector(engine, left, right);
        case kTypeString:
            return ofString(engine, left, right);
        default:
            // The type named is that of the left operand.
            logError(engine->logger,
                     "evaluateOf: Right operand must be a map or a vector (and not a %s)",
                     scriptObjectTypeName(left->type));
            return nullptr;
    }
}
