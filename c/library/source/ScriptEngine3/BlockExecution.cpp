#include "ScriptEngine3/BlockExecution.h"

#include "ScriptEngine3/BlockChain.h"
#include "ScriptEngine3/CallCommand.h"
#include "ScriptEngine3/FlowCommands.h"
#include "ScriptEngine3/ResultSetting.h"
#include "ScriptEngine3Defs/ScriptEvaluator.h"
#include "ScriptEngine3Expressions/Evaluator.h"
#include "platform/program.h"

namespace {

// What the deepest call of a handler may need of the stack.
constexpr size_t kStackReserve = 256 * 1024;

// What is marked `cold` here stands out of the way of the statements that succeed.

// Logs a message about a statement whose format ends in its line and file.
[[gnu::cold]] void logAboutLine(ScriptEngine* engine, int level, const char* format,
                                const ScriptLine* line) {
    if (!logWanted(level)) return;
    const SourceFile& source = engine->sources[line->source];
    logAt(engine->logger, level, format, line->lineNumber, source.directory, source.fileName);
}

// Finds the function that a `call` names, by the value that the name has now.
[[gnu::noinline]] bool resolveCall(ScriptEngine* engine, ScriptBlock* block, ScriptLine* line) {
    ScriptBlock* where = nullptr;
    ScriptObject* name = scriptBlockSearchPlace(block, &line->args.items[0], &where);
    if (name == nullptr) {
        logAboutLine(engine, kLogError,
                     "scriptEngineRunBlock: Failed to locate call function in line %u in file "
                     "\"%S%S\" (Did you forget to quote the function name?)",
                     line);
        return false;
    }
    Owned<String> made;
    std::string_view text;
    if (name->type == kTypeString) {
        text = stringView(&name->string);
    } else {
        made.reset(scriptObjectGetString(engine, name, block));
        text = stringView(made.get());
    }
    const ScriptFunction* function = scriptEngineFindUserFunction(engine, text);
    if (function == nullptr) {
        logAboutLine(engine, kLogError,
                     "scriptEngineRunBlock:  Could not find block (function?) - while executing "
                     "script line %u in \"%S%S\"",
                     line);
        return false;
    }
    line->block = function->line->block;
    return true;
}

// Whether a statement that changes things outside may run from its file.
[[gnu::noinline]] bool signatureSuffices(ScriptEngine* engine, const ScriptLine* line) {
    if (!line->needsSignature) return true;
    const SourceFile& source = engine->sources[line->source];
    if (source.isSigned) return true;
    logError(engine->logger,
             "scriptEngineRunBlock: Script \"%S%S\" contains one or more commands that cannot be "
             "executed as long as the script is not signed.",
             source.directory, source.fileName);
    engine->statusCode = kStatusUnsigned;
    return false;
}

// What a handler's failure does; false when the block stops.
[[gnu::cold, gnu::noinline]] bool actOnFailure(ScriptEngine* engine, int status,
                                               const ScriptLine* line) {
    constexpr char kErrorOccurred[] =
        "scriptEngineRunBlock: Error occurred in line %u in file \"%S%S\"";
    switch (status) {
        case kError:
            logAboutLine(engine, kLogError, kErrorOccurred, line);
            setError(engine, true);
            return false;
        case kInvalidArguments:
            logAboutLine(engine, kLogError, kErrorOccurred, line);
            setError(engine, true);
            setInvalidArgs(engine, true);
            return true;
        case kOutOfMemory:
            logAboutLine(engine, kLogError, kErrorOccurred, line);
            setError(engine, true);
            setOutOfMemory(engine, true);
            return true;
        case kInvalidCall:
            logAboutLine(engine, kLogError,
                         "scriptEngineRunBlock: #::11 - while executing script line %u in "
                         "\"%S%S\", but with negative result",
                         line);
            return false;
        default:
            return true;
    }
}

[[gnu::cold, gnu::noinline]] void traceResult(ScriptEngine* engine, int status,
                                              const ScriptLine* line) {
    if (status == kDone)
        logAboutLine(engine, kLogTrace,
                     "scriptEngineRunBlock: Successfully executed script line %u in \"%S%S\"",
                     line);
    else if (status == kNegative)
        logAboutLine(engine, kLogTrace,
                     "scriptEngineRunBlock: Successfully executed script line %u in \"%S%S\", but "
                     "with negative result",
                     line);
}

// Acts on what a handler gave back; false when the block stops.
inline bool actOnStatus(ScriptEngine* engine, ScriptBlock* block, int status,
                        const ScriptLine* line) {
    if (status == kDone) [[likely]] {
        if (line->flow != kContinueCommand) setSuccess(engine, true);
        return true;
    }
    if (status != kNegative) return actOnFailure(engine, status, line);
    setSuccess(engine, false);
    block->lastResult = 0;
    return true;
}

[[gnu::cold, gnu::noinline]] int undefinedExpression(ScriptEngine* engine) {
    logError(engine->logger, "Parameter %u is not (properly) defined", 1u);
    return kError;
}

// `eval` of what is no quick expression of the block itself.
[[gnu::noinline]] int runOtherEval(ScriptEngine* engine, ScriptBlock* block, ScriptLine* line) {
    ScriptExpression* expression = scriptArgumentProgram(block, &line->args);
    if (expression == nullptr) return line->handler(engine, block, &line->args, line->block);
    EvalResult result;
    if (scriptEngineRunExpression(engine, block, expression, kWantNothing, &result)) return kDone;
    return undefinedExpression(engine);
}

inline int runHandler(ScriptEngine* engine, ScriptBlock* block, ScriptLine* line) {
    if (line->flow == kEvalCommand) return runOtherEval(engine, block, line);
    return line->handler(engine, block, &line->args, line->block);
}

// Before a statement. A `call` has a block from its first run on, and from then on
// leaves the variables to the function's own statements.
inline void beginLine(ScriptEngine* engine, const ScriptLine* line) {
    if (line->block == kNoBlock && line->flow != kContinueCommand) setResults(engine, false);
}

inline bool findsItsCall(ScriptEngine* engine, ScriptBlock* block, ScriptLine* line) {
    return line->flow != kCallCommand || blockCallIsResolved(block, line) ||
           resolveCall(engine, block, line);
}

// One statement; false when the block stops.
inline bool runLine(ScriptEngine* engine, ScriptBlock* block, ScriptLine* line) {
    beginLine(engine, line);
    return findsItsCall(engine, block, line) &&
           actOnStatus(engine, block, runHandler(engine, block, line), line);
}

// The same for a run that is watched, or whose files may have to be signed.
[[gnu::noinline]] bool runLineWatched(ScriptEngine* engine, ScriptBlock* block, ScriptLine* line) {
    logAboutLine(engine, kLogTrace, "scriptEngineRunBlock: Executing script line %u in \"%S%S\"",
                 line);
    if (engine->requireSignature && !signatureSuffices(engine, line)) return false;
    beginLine(engine, line);
    if (!findsItsCall(engine, block, line)) return false;
    const int status = runHandler(engine, block, line);
    traceResult(engine, status, line);
    return actOnStatus(engine, block, status, line);
}

[[gnu::noinline]] bool runLinesWatched(ScriptEngine* engine, ScriptBlock* block) {
    for (ScriptLine* line : block->shape->lines) {
        if (!runLineWatched(engine, block, line)) return false;
        if (engine->pending != 0) break;
    }
    return true;
}

[[gnu::cold, gnu::noinline]] bool stopAtUndefined(ScriptEngine* engine, ScriptBlock* block,
                                                  const ScriptLine* line) {
    return actOnStatus(engine, block, undefinedExpression(engine), line);
}

// What an `if` does whose condition is not false; false when the block stops.
[[gnu::noinline]] bool takeIf(ScriptEngine* engine, ScriptBlock* block, ScriptTruth truth,
                              const ScriptLine* line) {
    return actOnStatus(engine, block, scriptEngineTakeIf(engine, block, truth, line->block), line);
}

// The statements of a block from one on, each for itself.
[[gnu::noinline]] bool runLinesFrom(ScriptEngine* engine, ScriptBlock* block, size_t first) {
    const GrowArray<ScriptLine*>& lines = block->shape->lines;
    for (size_t at = first; at < lines.size(); ++at) {
        if (!runLine(engine, block, lines[at])) return false;
        if (engine->pending != 0) break;
    }
    return true;
}

// A statement whose chain stopped within its expression; false when the block stops.
[[gnu::noinline]] bool finishLine(ScriptEngine* engine, ScriptBlock* block, EvalValue* stack,
                                  const StepStop& stop) {
    const ExprStep* first = stop.step;
    while (first != block->shape->chain.begin() && first[-1].line == stop.step->line) --first;
    ScriptLine* line = block->shape->lines[stop.step->line];
    beginLine(engine, line);
    // The statement's own program has the same steps.
    const StepStop own{line->args.steps + (stop.step - first), stop.top};
    if (line->flow == kEvalCommand) {
        if (!scriptEngineGoOn(engine, block, kWantNothing, stack, &own, nullptr))
            return stopAtUndefined(engine, block, line);
    } else {
        const bool hasValue = stop.step->kind == kStepCheck;
        ScriptTruth truth;
        if (!scriptEngineFindTruth(engine, block, stack, hasValue ? nullptr : &own, &truth))
            return stopAtUndefined(engine, block, line);
        if (truth != kFalse) return takeIf(engine, block, truth, line);
        block->lastCondition = kConditionFalse;
    }
    setSuccess(engine, true);
    return true;
}

// A statement whose handler is all there is to run; false when the block stops.
inline bool runHandlerOf(ScriptEngine* engine, ScriptBlock* block, ScriptLine* line) {
    beginLine(engine, line);
    return actOnStatus(engine, block, line->handler(engine, block, &line->args, line->block), line);
}

// A `call` that has found its function; false when the block stops.
inline bool runCall(ScriptEngine* engine, ScriptBlock* block, ScriptLine* line) {
    ScriptBlock* body = blockTemplate(engine, line->block);
    return actOnStatus(engine, block,
                       scriptEngineCallBody(engine, block, &line->args, body, line->block), line);
}

// A statement at which a chain has stopped; false when the block stops.
inline bool runStopped(ScriptEngine* engine, ScriptBlock* block, EvalValue* stack,
                       const StepStop& stop) {
    const ExprStep& step = *stop.step;
    switch (step.kind) {
        case kStepBody:
            return takeIf(engine, block, kTrue, step.statement);
        case kStepCall:
            return runCall(engine, block, step.statement);
        case kStepHandler:
            return runHandlerOf(engine, block, step.statement);
        case kStepLine:
            return runLine(engine, block, step.statement);
        case kStepRest:
            return true;
        default:
            return finishLine(engine, block, stack, stop);
    }
}

// The statements of a block that has a chain.
inline bool runChain(ScriptEngine* engine, ScriptBlock* block) {
    EvalValue stack[kQuickDepth];
    StepStop stop;
    const ExprStep* step = block->shape->chain.begin();
    for (;;) {
        if (block->ownLiterals != nullptr) [[unlikely]]
            return runLinesFrom(engine, block, step->line);
        if (step->run(step, block, stack, &stop) == kStepsEnded) return true;
        if (!runStopped(engine, block, stack, stop)) return false;
        if (engine->pending != 0) return true;
        step = stop.step;
        do ++step;
        while (step->line == stop.step->line);
    }
}

// The statements of a block without a chain.
[[gnu::noinline]] bool runLines(ScriptEngine* engine, ScriptBlock* block) {
    if (logWanted(kLogTrace) || engine->requireSignature) return runLinesWatched(engine, block);
    block->shape->hasRun = true;
    return runLinesFrom(engine, block, 0);
}

// Whether the statements are to run as a chain, which is made when they run again: what
// runs once needs none.
inline bool runsAsChain(ScriptEngine* engine, ScriptBlock* block) {
    if (logWanted(kLogTrace) || engine->requireSignature) return false;
    if (!block->shape->chain.empty()) [[likely]]
        return true;
    return block->shape->hasRun && block->ownLiterals == nullptr && blockChainMake(engine, block);
}

[[gnu::cold, gnu::noinline]] bool nestedTooDeeply(ScriptEngine* engine) {
    logError(engine->logger,
             "scriptEngineRunStack: Blocks and functions are nested too deeply (%u)",
             engine->stack.size());
    return false;
}

}  // namespace

bool scriptEngineRunBlock(ScriptEngine* engine, ScriptBlock* block) {
    char here;
    if (&here <= engine->stackFloor) return nestedTooDeeply(engine);
    block->lastResult = 1;
    const bool good =
        runsAsChain(engine, block) ? runChain(engine, block) : runLines(engine, block);
    if (!scriptTemporaries.empty()) scriptTemporariesFlush();
    return good;
}

void stackMeasure(ScriptEngine* engine) {
    const char here = 0;
    const size_t left = osStackLeft();
    engine->stackFloor = left < kStackReserve ? &here : &here - left + kStackReserve;
}

StackRun scriptEngineRunStack(ScriptEngine* engine, bool allowSingle) {
    const size_t depth = engine->stack.size();
    if (depth == 0 || (!allowSingle && depth < 2)) {
        logError(engine->logger, "scriptEngineRunStack: #::11");
        logLocation(engine->logger, kLogError);
        return StackRun::Failed;
    }
    ScriptBlock* block = engine->stack.back();
    StackRun result = StackRun::Failed;
    if (scriptEngineRunBlock(engine, block))
        result = block->lastResult != 0 ? StackRun::Done : StackRun::Negative;
    stackPop(engine);
    return result;
}

const ScriptFunction* scriptEngineFindUserFunction(const ScriptEngine* engine,
                                                   std::string_view name) {
    const uint32_t order = engine->functionIndex.find(name);
    return order == NameTable::kAbsent ? nullptr : &engine->functions[order];
}

namespace {

bool setTextArguments(ScriptBlock* block, const GrowArray<const String*>& args) {
    const GrowArray<uint32_t>& params = block->shape->paramIds;
    for (size_t at = 0; at < params.size() && at < args.size(); ++at) {
        Owned<ScriptObject> value(scriptObjectFromLiteral(stringView(args[at])));
        if (!value || !scriptBlockAddVar(block, params[at], value.get())) return false;
        value.release();
    }
    return true;
}

}  // namespace

bool scriptEngineExecuteFunction(ScriptEngine* engine, const ScriptFunction* function,
                                 ScriptBlock* parent, const GrowArray<const String*>& args) {
    const auto number = static_cast<uint32_t>(function->line->block);
    PushFailure failure;
    ScriptBlock* body = blockTemplate(engine, function->line->block);
    ScriptBlock* block = body == nullptr ? nullptr : blockPush(engine, body, parent, &failure);
    if (block == nullptr) {
        if (body == nullptr)
            logError(engine->logger, "scriptEngineExecuteFunction: Could not find script block %u",
                     number);
        else if (failure == PushFailure::NoInstance)
            logError(engine->logger,
                     "scriptEngineExecuteFunction: Failed to initialize script block %u", number);
        else
            logError(engine->logger, "scriptEngineExecuteFunction: #::100");
        logLocation(engine->logger, kLogError);
        return false;
    }
    if (!setTextArguments(block, args)) {
        engine->stack.pop();
        scriptBlockRetire(block);
        logError(engine->logger, "scriptEngineExecuteFunction: #::100");
        return false;
    }
    if (scriptEngineRunStack(engine, true) != StackRun::Failed) return true;
    logError(engine->logger, "scriptEngineExecuteFunction: Failed to execute script block %u",
             number);
    logLocation(engine->logger, kLogError);
    return false;
}
