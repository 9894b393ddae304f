#include "ScriptEngine3/BodyParser.h"

#include "ScriptEngine3/CommandTable.h"
#include "ScriptEngine3/EngineVariables.h"
#include "ScriptEngine3Expressions/ExpressionParser.h"
#include "platform/program.h"

namespace {

constexpr std::string_view kEndOfBody = "end";
// A body inside a body takes a few hundred bytes of stack.
constexpr size_t kStackReserve = 64 * 1024;

}  // namespace

bool bodyReserveNames(ScriptEngine* engine, ScriptBlock* block, const CommandRow* command,
                      const GrowArray<ScriptArg>& args) {
    if (command->declares == kDeclaresNone) return true;
    if (command->declares == kDeclaresOutermost) block = engine->globalBlock;
    const size_t count = command->declares == kDeclaresFirst ? 1 : args.size();
    for (size_t at = 0; at < count; ++at)
        if (args[at].kind == kPlaceUnknown && !scriptBlockReserve(block, args[at].id)) return false;
    return true;
}

bool BodyParser::outOfMemory() {
    logError(engine_->logger, "scriptEngineParseBlock: #::100");
    logLocation(engine_->logger, kLogError);
    return false;
}

// Every body knows its own file.
bool BodyParser::begin(ScriptBlock* block) {
    const SourceFile& source = engine_->sources[source_->index];
    return engineBorrowLocalVar(engine_, block, "scriptname", source.nameLiteral) &&
           engineBorrowLocalVar(engine_, block, "scriptdir", source.directoryLiteral);
}

ScriptBlock* BodyParser::parse() {
    if (osStackLeft() < kStackReserve) {
        logError(engine_->logger,
                 "scriptEngineParseBlock: Blocks are nested too deeply in line %u in file \"%S\"",
                 reader_->lineNumber(), path());
        return nullptr;
    }
    Owned<ScriptBlock> block(scriptBlockCreate());
    if (!block || !begin(block.get())) {
        outOfMemory();
        return nullptr;
    }
    DirectiveKind previous = kNoDirective;
    while (reader_->readLine()) {
        if (reader_->line() == kEndOfBody) break;
        if (!statement(block.get(), &previous)) return nullptr;
    }
    return block.release();
}

bool BodyParser::arguments(ScriptBlock* block) {
    args_.clear();
    if (scriptEngineProcessArgs(engine_, block, statement_.args, &args_) &&
        bodyReserveNames(engine_, block, statement_.command, args_))
        return true;
    logError(engine_->logger,
             "scriptEngineParseBlock: Failed to process arguments to function \"%S\" in line %u in "
             "file \"%S\"",
             statement_.name, reader_->lineNumber(), path());
    return false;
}

bool BodyParser::statement(ScriptBlock* block, DirectiveKind* previous) {
    const uint32_t lineNumber = reader_->lineNumber();
    if (!reader_->processLine(&statement_)) {
        logError(engine_->logger, "scriptEngineParseBlock: Error occured in line %u in file \"%S\"",
                 lineNumber, path());
        return false;
    }
    const CommandRow* command = statement_.command;
    logDebug(engine_->logger, "scriptEngineParseBlock: Parsing function \"%S\" in \"%S\", line %u",
             statement_.name, path(), lineNumber);
    if (!scriptEngineValidateArgs(engine_, command, statement_.args)) {
        logError(engine_->logger, "scriptEngineParseBlock: Error occured in line %u in file \"%S\"",
                 lineNumber, path());
        logLocation(engine_->logger, kLogError);
        return false;
    }
    if (command->scope == kAtFileLevel) {
        logError(
            engine_->logger,
            "scriptEngineParseBlock: Function \"%S\" must be in the global scope in line %u in "
            "file \"%S\"",
            statement_.name, lineNumber, path());
        logLocation(engine_->logger, kLogError);
        return false;
    }
    if (!arguments(block)) return false;
    const bool continuesBranch =
        command->directive == kBranchElseif || command->directive == kBranchElse;
    if (continuesBranch && *previous != kBranchIf && *previous != kBranchElseif) {
        logError(engine_->logger, "scriptEngineParseBlock: #::1122", statement_.name, lineNumber,
                 path());
        return false;
    }
    *previous = command->directive;
    Owned<ScriptLine> line(scriptLineCreate(source_->index, lineNumber, command, kNoBlock,
                                            args_.data(), static_cast<uint32_t>(args_.size())));
    if (!line) return outOfMemory();
    if (command->opensBlock && !nested(block, line.get(), command, lineNumber)) return false;
    if (!block->shape->lines.push(line.get())) {
        logError(engine_->logger,
                 "scriptEngineParse: Failed to add script line for function \"%S\" to block at "
                 "line %u in file \"%S\"",
                 command->name, lineNumber, path());
        return false;
    }
    line.release();
    return true;
}

bool BodyParser::nested(ScriptBlock* block, ScriptLine* line, const CommandRow* command,
                        uint32_t lineNumber) {
    line->block = static_cast<int32_t>(engine_->blocks.size());
    if (!engine_->blocks.push(nullptr)) return outOfMemory();
    ScriptBlock* body = parse();
    if (body == nullptr) {
        logError(engine_->logger,
                 "scriptEngineParse: Failed to parse \"%S\" block at line %u in file \"%S\"",
                 command->name, lineNumber, path());
        logLocation(engine_->logger, kLogError);
        return false;
    }
    body->parent = block;
    engine_->blocks[static_cast<size_t>(line->block)] = body;
    return true;
}
