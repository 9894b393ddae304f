#include "ScriptEngine3/SourceFiles.h"

#include "paths/Paths.h"
#include "strings/StringEdit.h"

namespace {

bool outOfMemory(ScriptEngine* engine) {
    logError(engine->logger, "scriptEngineParse: #::100");
    logLocation(engine->logger, kLogError);
    return false;
}

// The directory of a file: that of its path, below the base unless it says on
// its own where it begins.
String* directoryOf(const String* path, const String* baseDirectory) {
    Owned<String> own(pathDirectoryPart(path));
    if (!own) return nullptr;
    Owned<String> directory(baseDirectory != nullptr   ? stringClone(baseDirectory)
                            : stringIsEmpty(own.get()) ? pathCurrentDirectory()
                                                       : stringNewEmpty());
    if (!directory) return nullptr;
    if (pathIsAbsolute(own.get())) {
        directory = std::move(own);
    } else if (!stringIsEmpty(own.get())) {
        if (!pathEnsureTrailingSeparator(directory.get()) ||
            !stringAppend(directory.get(), own.get()))
            return nullptr;
    }
    if (!pathEnsureTrailingSeparator(directory.get()) || !pathResolveDots(directory.get()))
        return nullptr;
    return directory.release();
}

ScriptObject* sharedText(std::string_view text) {
    ScriptObject* object = scriptObjectCreateString(text);
    if (object != nullptr) object->flags |= kObjectShared;
    return object;
}

void endSourceFile(SourceFile* source) {
    stringDestroy(&source->directory);
    stringDestroy(&source->fileName);
    scriptObjectDestroy(&source->nameLiteral);
    scriptObjectDestroy(&source->directoryLiteral);
}

bool registerSource(ScriptEngine* engine, SourceFile* file, OpenSource* source) {
    file->nameLiteral = sharedText(stringView(source->path.get()));
    file->directoryLiteral = sharedText(stringView(file->directory));
    source->index = static_cast<uint32_t>(engine->sources.size());
    return file->nameLiteral != nullptr && file->directoryLiteral != nullptr &&
           engine->sources.push(*file);
}

}  // namespace

SourceOpening sourceOpen(ScriptEngine* engine, const String* path, const String* baseDirectory,
                         OpenSource* source) {
    SourceFile file{};
    file.fileName = pathBaseName(path);
    file.directory = directoryOf(path, baseDirectory);
    source->path.reset(stringClone(file.directory));
    if (file.fileName == nullptr || !source->path ||
        !stringAppend(source->path.get(), file.fileName)) {
        endSourceFile(&file);
        outOfMemory(engine);
        return SourceOpening::Failed;
    }
    NameTable& known = engine->parseTables->sourceIndex;
    const std::string_view fullPath = stringView(source->path.get());
    if (!pathExists(source->path.get())) {
        logError(engine->logger, "scriptEngineParse: #::201", source->path.get());
        endSourceFile(&file);
        return SourceOpening::Failed;
    }
    if (known.find(fullPath) != NameTable::kAbsent) {
        logTrace(engine->logger, "scriptEngineParse: Ignoring second parsing of script file \"%S\"",
                 source->path.get());
        endSourceFile(&file);
        return SourceOpening::PassOver;
    }
    if (!registerSource(engine, &file, source)) {
        logError(engine->logger, "scriptEngineParse: Failed to register source file \"%S\"",
                 source->path.get());
        endSourceFile(&file);
        return SourceOpening::PassOver;
    }
    if (!known.add(fullPath, source->index)) {
        outOfMemory(engine);
        return SourceOpening::Failed;
    }
    source->file.reset(bfileInitStr(source->path.get()));
    if (bfileOpen(source->file.get(), kFileRead) != kFileDone) {
        logError(engine->logger, "scriptEngineParse: #::202", source->path.get());
        return SourceOpening::Failed;
    }
    return SourceOpening::Open;
}
