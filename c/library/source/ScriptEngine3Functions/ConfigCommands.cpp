#include "ScriptEngine3Functions/ConfigCommands.h"

#include "ScriptEngine3Functions/ContainerArguments.h"
#include "config/ConfPatcher.h"

namespace {

constexpr bool kSigned = true;

// The arguments of a command on a `config` value.
class ConfigArguments : public ContainerArguments {
  public:
    ConfigArguments(ScriptEngine* engine, ScriptBlock* block, ScriptArgs* args)
        : ContainerArguments(engine, block, args, kTypeConfig) {}

    // The record, to be asked for last; null after a failure.
    ConfPatcher* config() {
        const ScriptObject* object = container();
        return object == nullptr ? nullptr : object->config;
    }
};

bool setOne(ConfPatcher* config, const String* path, const String* value) {
    ConfValues values;
    values.add(value);
    return confSetOpen(config, path, &values);
}

int scriptEngineConfLoad(ScriptEngine* engine, ScriptBlock* block, ScriptArgs* args, int) {
    ConfigArguments in(engine, block, args);
    const String* fileName = in.string(1);
    ConfPatcher* config = in.config();
    if (!in.ok()) return in.status();
    return confPatchParse(config, fileName) ? kDone : kNegative;
}

int scriptEngineConfSave(ScriptEngine* engine, ScriptBlock* block, ScriptArgs* args, int) {
    ConfigArguments in(engine, block, args);
    const String* fileName = in.string(1);
    ConfPatcher* config = in.config();
    if (!in.ok()) return in.status();
    if (!stringSet(&config->fileName, fileName))
        return commandOutOfMemory(engine, "scriptEngineConfSave");
    return confPatchSave(config) ? kDone : kNegative;
}

int scriptEngineConfSet(ScriptEngine* engine, ScriptBlock* block, ScriptArgs* args, int) {
    ConfigArguments in(engine, block, args);
    const String* path = in.string(1);
    const String* value = in.text(2);
    ConfPatcher* config = in.config();
    if (!in.ok()) return in.status();
    return setOne(config, path, value) ? kDone : kNegative;
}

// Puts the type's word into a target, if there is one.
bool setType(ScriptObject* target, const ConfNode* node) {
    return target == nullptr || stringSetText(&target->string, confNodeTypeText(node));
}

int scriptEngineConfGet(ScriptEngine* engine, ScriptBlock* block, ScriptArgs* args, int) {
    ConfigArguments in(engine, block, args);
    const String* path = in.string(1);
    const bool withType = in.count() > 3;
    in.retyped(2, kTypeString);
    ScriptObject* type = withType ? in.retyped(3, kTypeString) : nullptr;
    // Retyping the one target may have ended the other.
    ScriptObject* target = in.retyped(2, kTypeString);
    ConfPatcher* config = in.config();
    if (!in.ok()) return in.status();
    stringClear(&target->string);
    if (type != nullptr) stringClear(&type->string);
    const ConfNode* node = confPatchGet(config, path, false);
    if (node == nullptr) return kNegative;
    if (vectorSize(node->values) == 0) return kDone;
    const bool got = confAppendValue(config, node, 0, &target->string) && setType(type, node);
    return got ? kDone : kNegative;
}

// Whether a command may add to the value or read its items; else logs the message.
bool requireItems(ScriptEngine* engine, const ScriptObject* object, const char* message) {
    const ScriptType type = object->type;
    if (type == kTypeVector || type == kTypeList || type == kTypeSet) return true;
    logError(engine->logger, message);
    return false;
}

int scriptEngineConfSetMulti(ScriptEngine* engine, ScriptBlock* block, ScriptArgs* args, int) {
    ConfigArguments in(engine, block, args);
    const String* path = in.string(1);
    const ScriptObject* items = in.any(2);
    if (!in.ok()) return in.status();
    if (!requireItems(
            engine, items,
            "scriptEngineConfSetMulti: Third parameter must be a vector, a list or a set"))
        return kError;
    ConfValues values;
    const bool haveTexts = scriptContainerEach(items, [&](const ScriptObject* item) {
        const Owned<String> text(scriptObjectGetString(engine, item));
        if (text) values.add(text.get());
        return static_cast<bool>(text);
    });
    ConfPatcher* config = in.config();
    if (!in.ok()) return in.status();
    return haveTexts && confSetOpen(config, path, &values) ? kDone : kNegative;
}

bool addText(ScriptObject* target, const String* text) {
    Owned<ScriptObject> item(scriptObjectCreateString(stringView(text)));
    if (!item || !containerAdd(target, item.get())) return false;
    item.release();
    return true;
}

bool addValues(ScriptObject* target, const ConfPatcher* config, const ConfNode* node) {
    LocalString text;
    for (uint32_t at = 0; at < vectorSize(node->values); ++at) {
        stringClear(&text);
        if (!confAppendValue(config, node, at, &text) || !addText(target, &text)) return false;
    }
    return true;
}

int scriptEngineConfGetMulti(ScriptEngine* engine, ScriptBlock* block, ScriptArgs* args, int) {
    ConfigArguments in(engine, block, args);
    const String* path = in.string(1);
    const bool withType = in.count() > 3;
    in.target(2);
    ScriptObject* type = withType ? in.retyped(3, kTypeString) : nullptr;
    ScriptObject* target = in.target(2);
    ConfPatcher* config = in.config();
    if (!in.ok()) return in.status();
    if (!requireItems(
            engine, target,
            "scriptEngineConfGetMulti: Third parameter must be a vector, a list or a set"))
        return kError;
    if (type != nullptr) stringClear(&type->string);
    const ConfNode* node = confPatchGet(config, path, false);
    if (node == nullptr) return kNegative;
    if (vectorSize(node->values) == 0) return kDone;
    if (!addValues(target, config, node) || !setType(type, node))
        return commandOutOfMemory(engine, "scriptEngineConfGetMulti");
    return kDone;
}

int scriptEngineConfGetSub(ScriptEngine* engine, ScriptBlock* block, ScriptArgs* args, int) {
    ConfigArguments in(engine, block, args);
    const String* path = in.string(1);
    ScriptObject* target = in.target(2);
    ConfPatcher* config = in.config();
    if (!in.ok()) return in.status();
    if (!requireItems(engine, target,
                      "scriptEngineConfGetSub: Third parameter must be a vector, a list or a set"))
        return kError;
    const ConfNode* node = confPatchGet(config, path, false);
    if (node == nullptr) return kNegative;
    for (uint32_t at = 0; at < vectorSize(node->children); ++at)
        if (!addText(target, &confNodeChildAt(node, at)->name))
            return commandOutOfMemory(engine, "scriptEngineConfGetSub");
    return kDone;
}

int scriptEngineConfHave(ScriptEngine* engine, ScriptBlock* block, ScriptArgs* args, int) {
    ConfigArguments in(engine, block, args);
    const String* path = in.string(1);
    ConfPatcher* config = in.config();
    if (!in.ok()) return in.status();
    return confPatchGet(config, path, false) != nullptr ? kDone : kNegative;
}

int patchFailed(ScriptEngine* engine, const char* message,
                std::source_location where = std::source_location::current()) {
    logError(engine->logger, message);
    logLocation(engine->logger, kLogError, where);
    return kError;
}

constexpr CommandRow kConfigCommands[] = {
    // name       handler                 min max targets
    {"confload", scriptEngineConfLoad, 2, 2, "1"},
    {"confsave", scriptEngineConfSave, 2, 2, "1", kInBlock, false, kSigned},
    {"confset", scriptEngineConfSet, 3, 3, "1"},
    {"confget", scriptEngineConfGet, 3, 4, "1,3,4"},
    {"confsetmulti", scriptEngineConfSetMulti, 3, 3, "1,3"},
    {"confgetmulti", scriptEngineConfGetMulti, 3, 4, "1,3,4"},
    {"confgetsub", scriptEngineConfGetSub, 3, 3, "1,3"},
    {"confhave", scriptEngineConfHave, 2, 2, "1"},
};

}  // namespace

int scriptEngineConfPatch(ScriptEngine* engine, ScriptBlock* block, ScriptArgs* args, int) {
    Arguments in(engine, block, args);
    const String* fileName = in.string(0);
    const String* path = in.string(1);
    const String* value = in.text(2);
    if (!in.ok()) return in.status();
    const Owned<ConfPatcher> config(confPatchCreate());
    if (!config) return commandOutOfMemory(engine, "scriptEngineConfPatch");
    if (!confPatchParse(config.get(), fileName))
        return patchFailed(engine, "scriptEngineConfPatch: Failed to parse configuration file");
    if (!setOne(config.get(), path, value))
        return patchFailed(engine, "scriptEngineConfPatch: Failed to patch configuration file");
    if (!confPatchSave(config.get()))
        return patchFailed(engine,
                           "scriptEngineConfPatch: Failed to save patched configuration file");
    return kDone;
}

std::span<const CommandRow> configCommands() {
    return kConfigCommands;
}
