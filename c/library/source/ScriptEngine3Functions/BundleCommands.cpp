#include "ScriptEngine3Functions/BundleCommands.h"

#include "ScriptEngine3Functions/ContainerArguments.h"
#include "ScriptEngine3Functions/FlagArgument.h"
#include "files/Bundle.h"
#include "paths/DirectoryList.h"
#include "paths/Paths.h"
#include "strings/StringCompare.h"
#include "strings/StringFind.h"
#include "strings/StringMatch.h"

namespace {

// As a column of the table: the command needs a signed file.
constexpr bool kSigned = true;

constexpr uint32_t kSuffixLength = 3;  // of ".gz"

// The paths of a bundle's files, which it owns.
class PathVector {
  public:
    PathVector() : paths_(vectorCreate()) {}
    PathVector(const PathVector&) = delete;
    PathVector& operator=(const PathVector&) = delete;
    ~PathVector() {
        Vector* paths = paths_.release();
        vectorDestroyWith(&paths, stringDestroyElement);
    }

    // Null when memory ran out.
    Vector* get() const { return paths_.get(); }
    // Takes the path over; false for null and when memory runs out.
    bool add(Owned<String> path) {
        if (!path || !vectorAppend(paths_.get(), path.get())) return false;
        path.release();
        return true;
    }

  private:
    Owned<Vector> paths_;
};

int bundleOutOfMemory(ScriptEngine* engine) {
    return commandOutOfMemory(engine, "scriptEngineBundle");
}

bool isSequence(const ScriptObject* object) {
    return object->type == kTypeVector || object->type == kTypeList || object->type == kTypeSet;
}

// The elements of a container as they stand.
int addElements(ScriptEngine* engine, const ScriptObject* container, PathVector* paths) {
    int status = kDone;
    scriptContainerEach(container, [&](const ScriptObject* element) {
        Owned<String> path(stringNewEmpty());
        if (!path)
            status = bundleOutOfMemory(engine);
        else if (!scriptObjectAppendString(engine, element, path.get()))
            status = commandError(engine, "scriptEngineBundle: Failed to get string value");
        else if (!paths->add(std::move(path)))
            status = bundleOutOfMemory(engine);
        return status == kDone;
    });
    return status;
}

// The files of a directory that match the pattern, sorted by name.
int addMatches(ScriptEngine* engine, String* directory, const String* pattern, PathVector* paths) {
    DirectoryList list;
    if (!pathListDirectory(directory, pattern, &list)) {
        logError(engine->logger, "scriptEngineBundle: Failed to read source directory \"%S\"",
                 directory);
        return kError;
    }
    list.sort();
    if (!pathEnsureTrailingSeparator(directory)) return bundleOutOfMemory(engine);
    uint32_t leftOut = list.unnamed();
    for (uint32_t at = 0; at < list.size(); ++at) {
        if (list[at].isDirectory) continue;
        if (list[at].name.find('\n') != std::string_view::npos) {
            ++leftOut;
            continue;
        }
        Owned<String> path(stringClone(directory));
        if (!stringAppendView(path.get(), list[at].name) || !paths->add(std::move(path)))
            return bundleOutOfMemory(engine);
    }
    if (leftOut > 0)
        logWarning(
            engine->logger,
            "scriptEngineBundle: Left out names with a separator or a line end: %u of \"%S\"",
            leftOut, directory);
    return kDone;
}

// One path, or the files that its base name stands for as a pattern.
int addText(ScriptEngine* engine, const String* text, PathVector* paths) {
    Owned<String> name(pathBaseName(text));
    if (!name) return bundleOutOfMemory(engine);
    if (stringFindAnyOf(name.get(), "*?") == kStringNotFound)
        return paths->add(Owned<String>(stringClone(text))) ? kDone : bundleOutOfMemory(engine);
    Owned<String> directory(pathDirectoryPart(text));
    if (!directory) return bundleOutOfMemory(engine);
    return addMatches(engine, directory.get(), name.get(), paths);
}

int addSources(ScriptEngine* engine, const ScriptObject* sources, PathVector* paths) {
    if (paths->get() == nullptr) return bundleOutOfMemory(engine);
    if (sources->type == kTypeString) return addText(engine, &sources->string, paths);
    if (isSequence(sources)) return addElements(engine, sources, paths);
    return commandError(engine,
                        "scriptEngineBundle: Second parameter must be a string, a list, "
                        "a vector or a set");
}

int scriptEngineBundle(ScriptEngine* engine, ScriptBlock* block, ScriptArgs* args, int) {
    Arguments in(engine, block, args);
    const String* target = in.string(0);
    const ScriptObject* sources = in.any(1);
    if (!in.ok()) return in.status();
    PathVector paths;
    int status = addSources(engine, sources, &paths);
    bool deleteOriginals = false;
    bool zip = true;
    if (status == kDone)
        status = readOptionalFlag(
            engine, block, &in, 2,
            "scriptEngineBundle: Failed to get boolean value of third parameter", &deleteOriginals);
    if (status == kDone)
        status = readOptionalFlag(
            engine, block, &in, 3,
            "scriptEngineBundle: Failed to get boolean value of fourth parameter", &zip);
    if (status != kDone) return status;
    const bool made = pathFileExists(target)
                          ? bundleAppend(target, paths.get(), deleteOriginals, engine->logger)
                          : bundleMake(target, paths.get(), zip, deleteOriginals, engine->logger);
    return made ? kDone : kNegative;
}

int addExtracted(ScriptEngine* engine, ScriptObject* target, const Vector* paths) {
    for (uint32_t at = 0; at < vectorSize(paths); ++at) {
        const auto* path = static_cast<const String*>(vectorGet(paths, at));
        if (!containerAddText(target, stringView(path)))
            return commandOutOfMemory(engine, "scriptEngineExplode");
    }
    return kDone;
}

int scriptEngineExplode(ScriptEngine* engine, ScriptBlock* block, ScriptArgs* args, int) {
    Arguments in(engine, block, args);
    const String* source = in.string(0);
    const String* directory = in.string(1);
    ScriptObject* target = in.count() > 2 ? in.target(2) : nullptr;
    if (!in.ok()) return in.status();
    if (target != nullptr && !isSequence(target))
        return commandError(
            engine, "scriptEngineExplode: Third parameter must be a vector, a list or a set");
    PathVector extracted;
    if (extracted.get() == nullptr) return commandOutOfMemory(engine, "scriptEngineExplode");
    if (!bundleExplode(source, directory, extracted.get(), false, engine->logger)) return kNegative;
    return target == nullptr ? kDone : addExtracted(engine, target, extracted.get());
}

int scriptEngineAttachBundle(ScriptEngine* engine, ScriptBlock* block, ScriptArgs* args, int) {
    Arguments in(engine, block, args);
    const String* target = in.string(0);
    const String* source = in.string(1);
    if (!in.ok()) return in.status();
    return bundleAttach(source, target, false, engine->logger) ? kDone : kNegative;
}

// The two directions of `zip`.
struct ZipRule {
    const char* word;
    bool wantsSuffix;  // the source has to end in ".gz"; else it must not
    bool (*work)(const String* source, const String* target, bool deleteOriginal, Logger* logger);
    const char* notThere;
    const char* wrongName;
    const char* failed;
};

constexpr ZipRule kZipRules[] = {
    {"zip", false, bundleZipTrg, "scriptEngineZip: Attempting to zip a non-existing file \"%S\"",
     "scriptEngineZip: Attempting to zip an already zipped file \"%S\"",
     "scriptEngineZip: Failed to zip file"},
    {"unzip", true, bundleUnZipTrg,
     "scriptEngineZip: Attempting to unzip a non-existing file \"%S\"",
     "scriptEngineZip: Attempting to unzip an non-zipped file \"%S\"",
     "scriptEngineZip: Failed to unzip file"},
};

// The target of a call that names none.
String* defaultTarget(const ZipRule& rule, const String* source) {
    if (rule.wantsSuffix)
        return stringFromView(stringView(source).substr(0, source->length - kSuffixLength));
    Owned<String> target(stringClone(source));
    return stringAppendText(target.get(), ".gz") ? target.release() : nullptr;
}

int zipBy(const ZipRule& rule, ScriptEngine* engine, const String* source, const String* target) {
    if (!pathFileExists(source)) {
        logWarning(engine->logger, rule.notThere, source);
        return kNegative;
    }
    if (stringMatchNoCaseText(source, "*.gz") != rule.wantsSuffix) {
        logWarning(engine->logger, rule.wrongName, source);
        return kNegative;
    }
    // The original goes where the target takes its place: when none is named.
    const bool deleteOriginal = target == nullptr;
    Owned<String> made(deleteOriginal ? defaultTarget(rule, source) : stringClone(target));
    if (!made) return commandOutOfMemory(engine, "scriptEngineZip");
    if (rule.work(source, made.get(), deleteOriginal, engine->logger)) return kDone;
    logError(engine->logger, rule.failed);
    return kNegative;
}

int scriptEngineZip(ScriptEngine* engine, ScriptBlock* block, ScriptArgs* args, int) {
    Arguments in(engine, block, args);
    const String* source = in.string(0);
    const String* type = in.string(1);
    const String* target = in.count() > 2 ? in.string(2) : nullptr;
    if (!in.ok()) return in.status();
    for (const ZipRule& rule : kZipRules)
        if (stringCompareNoCaseText(type, rule.word) == 0)
            return zipBy(rule, engine, source, target);
    logError(engine->logger, "scriptEngineZip: Invalid type \"%S\"", type);
    return kError;
}

constexpr CommandRow kBundleCommands[] = {
    {"bundle", scriptEngineBundle, 2, 4, nullptr, kInBlock, false, kSigned},
    {"explode", scriptEngineExplode, 2, 3, nullptr, kInBlock, false, kSigned},
    {"attachbundle", scriptEngineAttachBundle, 2, 2, nullptr, kInBlock, false, kSigned},
    {"zip", scriptEngineZip, 2, 3, nullptr, kInBlock, false, kSigned},
};

}  // namespace

std::span<const CommandRow> bundleCommands() {
    return kBundleCommands;
}
