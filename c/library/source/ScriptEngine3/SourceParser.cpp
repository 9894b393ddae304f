#include "ScriptEngine3/SourceParser.h"

#include "ScriptEngine3/BodyParser.h"
#include "ScriptEngine3/CommandTable.h"
#include "ScriptEngine3/SourceFiles.h"
#include "ScriptEngine3/SourceReader.h"
#include "ScriptEngine3/TrustDirectives.h"
#include "ScriptEngine3Expressions/ExpressionParser.h"
#include "strings/StringEdit.h"

namespace {

constexpr std::string_view kMainFunction = "main";

// One file at file level.
class FileParser {
  public:
    FileParser(ScriptEngine* engine, OpenSource* source, bool isMain)
        : engine_(engine),
          source_(source),
          reader_(engine, source->file.get(), source->path.get()),
          isMain_(isMain) {}

    bool parse();

  private:
    bool statement();
    bool dispatch();
    bool include();
    bool function();
    bool functionBody(std::string_view words, uint32_t lineNumber);
    bool parameters(std::string_view words, uint32_t lineNumber, ScriptBlock* body);
    bool globalStatement();
    bool trusted(bool (*directive)(const TrustDirective& directive));
    // Reports a failure of the statement; `format` ends in its line and file.
    template <typename... Args>
    bool fail(const char* format, const Args&... args) {
        logError(engine_->logger, format, args...);
        logLocation(engine_->logger, kLogError);
        return false;
    }
    const String* path() const { return source_->path.get(); }

    ScriptEngine* engine_;
    OpenSource* source_;
    SourceReader reader_;
    bool isMain_;
    SourceStatement statement_;
    GrowArray<ScriptArg> args_;
};

bool FileParser::parse() {
    while (reader_.readLine())
        if (!statement()) return false;
    if (reader_.end() == SourceEnd::NoMemory) return false;
    bfileClose(source_->file.get());
    return trustSettle(engine_, path(), source_->index);
}

bool FileParser::statement() {
    if (!reader_.processLine(&statement_)) {
        logError(engine_->logger, "scriptEngineParse: Error occured in line %u in file \"%S\"",
                 reader_.lineNumber(), path());
        return false;
    }
    logDebug(engine_->logger, "scriptEngineParse: Parsing function \"%S\" in \"%S\", line %u",
             statement_.name, path(), reader_.lineNumber());
    if (!scriptEngineValidateArgs(engine_, statement_.command, statement_.args))
        return fail("scriptEngineParse: #::11 - #::1116", statement_.name);
    if (statement_.command->scope == kInBlock)
        return fail(
            "scriptEngineParse: Function \"%S\" can not be in the global scope in line %u in file "
            "\"%S\"",
            statement_.name, reader_.lineNumber(), path());
    return dispatch();
}

bool FileParser::dispatch() {
    switch (statement_.command->directive) {
        case kDirectiveInclude:
            return include();
        case kDirectiveFunction:
            return function();
        case kDirectiveSignature:
            return trusted(trustSignature);
        case kDirectiveLimit:
            return trusted(trustLimit);
        case kDirectiveUser:
            return trusted(trustUser);
        case kDirectiveGroup:
            return trusted(trustGroup);
        default:
            return globalStatement();
    }
}

bool FileParser::trusted(bool (*directive)(const TrustDirective& directive)) {
    return directive({engine_, &reader_, &statement_, path(), source_->index});
}

bool FileParser::globalStatement() {
    args_.clear();
    if (!scriptEngineProcessArgs(engine_, engine_->globalBlock, statement_.args, &args_))
        return fail(
            "scriptEngineParseBlock: Failed to process arguments to function \"%S\" in line %u in "
            "file \"%S\"",
            statement_.name, reader_.lineNumber(), path());
    Owned<ScriptLine> line(scriptLineCreate(source_->index, reader_.lineNumber(),
                                            statement_.command, kGlobalBlock, args_.data(),
                                            static_cast<uint32_t>(args_.size())));
    // Whether a signature is asked for is a matter of statements in bodies.
    if (line) line->needsSignature = 0;
    if (!line || !bodyReserveNames(engine_, engine_->globalBlock, statement_.command, args_) ||
        !engine_->globalBlock->shape->lines.push(line.get())) {
        logError(engine_->logger,
                 "scriptEngineParse: Failed to add script line for function \"%S\" to block at "
                 "line %u in file \"%S\"",
                 statement_.name, reader_.lineNumber(), path());
        return false;
    }
    line.release();
    return true;
}

bool FileParser::include() {
    const uint32_t lineNumber = reader_.lineNumber();
    Owned<String> name(stringFromView(statement_.args[0]));
    stringUnquote(name.get());
    const SourceFile& source = engine_->sources[source_->index];
    if (name && scriptEngineParse(engine_, name.get(), source.directory, false)) {
        trustHashLines(engine_, &reader_, source_->index);
        return true;
    }
    logError(engine_->logger, "scriptEngineParse: #::1118", name.get(), lineNumber, path());
    return false;
}

bool FileParser::function() {
    const std::string_view name = statement_.args[0];
    const uint32_t lineNumber = reader_.lineNumber();
    if (!isMain_ && name == kMainFunction) {
        reader_.skipFunction();
        return true;
    }
    NameTable& names = engine_->parseTables->functionNames;
    if (names.find(name) != NameTable::kAbsent)
        return fail(
            "scriptEngineParse: User function \"%S\" in line %u in file \"%S\" is already defined",
            name, lineNumber, path());
    if (!names.add(name, names.count()))
        return fail(
            "scriptEngineParse: Failed to register user function \"%S\" in line %u in file \"%S\" "
            "is already defined. Possible reason: #::100",
            name, lineNumber, path());
    // Reading the body overwrites the statement: its words are kept aside.
    Owned<String> words(stringNewEmpty());
    for (const std::string_view word : statement_.args)
        if (!stringAppendView(words.get(), word) || !stringAppendChar(words.get(), ' '))
            return fail("scriptEngineParse: #::100");
    return functionBody(stringView(words.get()), lineNumber);
}

// `words`: the function's name and its parameters, each with a blank behind it.
bool FileParser::functionBody(std::string_view words, uint32_t lineNumber) {
    const std::string_view name = words.substr(0, words.find(' '));
    const auto number = static_cast<int32_t>(engine_->blocks.size());
    const CommandRow* command = statement_.command;
    if (!engine_->blocks.push(nullptr)) return fail("scriptEngineParse: #::100");
    Owned<ScriptBlock> body(BodyParser(engine_, source_, &reader_).parse());
    if (!body) {
        logError(engine_->logger, "scriptEngineParse: #::1119", name, path());
        return false;
    }
    args_.clear();
    if (!parameters(words, lineNumber, body.get())) return false;
    ScriptFunction function{stringFromView(name),
                            scriptLineCreate(source_->index, lineNumber, command, number,
                                             args_.data(), static_cast<uint32_t>(args_.size()))};
    const auto order = static_cast<uint32_t>(engine_->functions.size());
    if (function.name == nullptr || function.line == nullptr ||
        !engine_->functions.push(function)) {
        stringDestroy(&function.name);
        scriptLineDestroy(&function.line);
        return fail("scriptEngineParse: #::100");
    }
    if (!engine_->functionIndex.add(name, order)) return fail("scriptEngineParse: #::100");
    body->parent = engine_->globalBlock;
    engine_->blocks[static_cast<size_t>(number)] = body.release();
    return true;
}

bool FileParser::parameters(std::string_view words, uint32_t lineNumber, ScriptBlock* body) {
    const std::string_view function = words.substr(0, words.find(' '));
    for (size_t at = function.size() + 1; at < words.size();) {
        const std::string_view name = words.substr(at, words.find(' ', at) - at);
        at += name.size() + 1;
        ScriptArg arg;
        arg.id = scriptVarNameToId(engine_->parseTables, name);
        if (arg.id == kNoVariable)
            return fail(
                "scriptEngineParse: Invalid argument \"%S\" to definition of function \"%S\" in "
                "line %u in file \"%S\"",
                name, function, lineNumber, path());
        logDebug(engine_->logger, "scriptEngineParse: Argument variable \"%S\" = %u", name, arg.id);
        BlockShape* shape = body->shape;
        if (!args_.push(arg) || !scriptBlockReserve(body, arg.id) ||
            !shape->paramIds.push(arg.id) || !shape->paramSlots.push(*shape->slots.find(arg.id)))
            return fail("scriptEngineParse: #::100");
    }
    return true;
}

}  // namespace

bool scriptEngineParse(ScriptEngine* engine, const String* path, const String* baseDirectory,
                       bool isMain) {
    OpenSource source;
    switch (sourceOpen(engine, path, baseDirectory, &source)) {
        case SourceOpening::Failed:
            return false;
        case SourceOpening::PassOver:
            return true;
        case SourceOpening::Open:
            break;
    }
    return FileParser(engine, &source, isMain).parse();
}
