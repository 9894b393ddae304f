#include "config/ConfPatcher.h"

#include "config/ConfFailure.h"
#include "containers/Memory.h"
#include "paths/Paths.h"
#include "strings/StringCompare.h"

namespace {

constexpr char kPathSeparator = '.';
constexpr char kVariableSign = '%';

bool copyVariables(Map* to, const Map* from) {
    for (const MapNode* at = mapFirstNode(from); at != nullptr; at = mapNextNode(from, at)) {
        Owned<String> name(stringClone(static_cast<const String*>(at->data)));
        Owned<String> value(stringClone(static_cast<const String*>(at->value)));
        if (!name || !value || !mapInsert(to, name.get(), value.get())) return false;
        name.release();
        value.release();
    }
    return true;
}

// The node that the rest of a path, behind the root's name, leads to.
ConfNode* follow(ConfNode* node, std::string_view rest) {
    while (node != nullptr) {
        const size_t end = rest.find(kPathSeparator);
        node = confNodeChild(node, rest.substr(0, end));
        if (end == std::string_view::npos) break;
        rest.remove_prefix(end + 1);
    }
    return node;
}

// Costs a text as long as all values: only for those who listen.
void traceValues(const ConfPatcher* conf, const String* path, const ConfNode* node) {
    if (!logWanted(kLogTrace) || vectorSize(node->values) == 0) return;
    LocalString joined;
    for (uint32_t at = 0; at < vectorSize(node->values); ++at) {
        if (at != 0) stringAppendChar(&joined, '\n');
        stringAppend(&joined, confNodeValueAt(node, at));
    }
    logTrace(conf->logger, "confPatchGet: \"%s\"=%s", path, &joined);
}

bool normalise(String* value, int32_t type) {
    if (type != kConfFileName && type != kConfDirName) return true;
    return pathResolveDots(value) && (type == kConfFileName || pathEnsureTrailingSeparator(value));
}

// What stands for a span from percent sign to percent sign.
std::string_view expanded(const ConfPatcher* conf, std::string_view span) {
    if (mapCount(conf->variables) == 0) return span;
    const Owned<String> name(stringFromView(span));
    const void* value = name ? mapGet(conf->variables, name.get()) : nullptr;
    return value == nullptr ? span : stringView(static_cast<const String*>(value));
}

}  // namespace

ConfPatcher* confPatchCreate() {
    Owned<ConfPatcher> conf(memNew<ConfPatcher>());
    if (!conf) return nullptr;
    conf->logger = logCreate();
    conf->variables = mapCreate(stringCompareElements);
    return conf->logger == nullptr || conf->variables == nullptr ? nullptr : conf.release();
}

void confPatchDestroy(ConfPatcher** conf) {
    if (conf == nullptr || *conf == nullptr) return;
    stringRelease(&(*conf)->fileName);
    confNodeDestroy(&(*conf)->root);
    logDestroy(&(*conf)->logger);
    mapDestroyWith(&(*conf)->variables, stringDestroyElement, stringDestroyElement);
    memDelete(conf);
}

ConfPatcher* confPatchCopy(const ConfPatcher* source) {
    if (source == nullptr) return nullptr;
    Owned<ConfPatcher> copy(confPatchCreate());
    if (!copy || !stringAppend(&copy->fileName, &source->fileName) ||
        !copyVariables(copy->variables, source->variables))
        return nullptr;
    copy->root = confNodeClone(source->root);
    return (copy->root == nullptr) == (source->root == nullptr) ? copy.release() : nullptr;
}

ConfNode* confPatchGet(ConfPatcher* conf, const String* path, bool required) {
    if (conf == nullptr || path == nullptr) return nullptr;
    logTrace(conf->logger, "confPatchGet: Getting %s", path);
    std::string_view rest = stringView(path);
    const size_t end = rest.find(kPathSeparator);
    const std::string_view rootName = conf->root == nullptr ? "" : stringView(&conf->root->name);
    if (conf->root == nullptr || rest.substr(0, end) != rootName) {
        logError(conf->logger, "confPatchGet: #::507", rootName, path, &conf->fileName);
        logLocation(conf->logger, kLogError);
        return nullptr;
    }
    rest.remove_prefix(end == std::string_view::npos ? rest.size() : end + 1);
    ConfNode* node = follow(conf->root, rest);
    if (node == nullptr) {
        logAt(conf->logger, required ? kLogError : kLogVerbose, "confPatchGet: #::508", path);
        if (required) logLocation(conf->logger, kLogError);
        return nullptr;
    }
    logTrace(conf->logger, "confPatchGet: Found it");
    traceValues(conf, path, node);
    return node;
}

void ConfValues::add(const String* text) {
    if (strings == nullptr) strings = vectorCreateSized(1);
    Owned<String> copy(stringClone(text));
    if (copy && vectorAppend(strings, copy.get()))
        copy.release();
    else
        whole = false;
}

bool confSetOpen(ConfPatcher* conf, const String* path, ConfValues* values) {
    ConfNode* node = confPatchGet(conf, path, true);
    if (node == nullptr) return false;
    bool whole = values->whole;
    for (uint32_t at = 0; at < vectorSize(values->strings); ++at)
        whole &= normalise(static_cast<String*>(vectorGet(values->strings, at)), node->type);
    if (!whole) return confFailed(conf, "confSetOpen: #::100");
    std::swap(node->values, values->strings);
    return true;
}

bool confAppendValue(const ConfPatcher* conf, const ConfNode* node, uint32_t index, String* out) {
    std::string_view rest = stringView(confNodeValueAt(node, index));
    while (true) {
        const size_t from = rest.find(kVariableSign);
        const size_t to =
            from == std::string_view::npos ? from : rest.find(kVariableSign, from + 1);
        if (to == std::string_view::npos) return stringAppendView(out, rest);
        const std::string_view span = rest.substr(from, to - from + 1);
        if (!stringAppendView(out, rest.substr(0, from)) ||
            !stringAppendView(out, expanded(conf, span)))
            return false;
        rest.remove_prefix(to + 1);
    }
}

const char* confNodeTypeText(const ConfNode* node) {
    return node->type == kConfNone ? "undef" : confTypeWord(node->type);
}
