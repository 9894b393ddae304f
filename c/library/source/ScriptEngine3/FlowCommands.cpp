#include "ScriptEngine3/FlowCommands.h"

#include "ScriptEngine3/BlockExecution.h"
#include "ScriptEngine3/CallCommand.h"
#include "ScriptEngine3Defs/Arguments.h"
#include "ScriptEngine3Defs/ScriptEvaluator.h"
#include "ScriptEngine3Defs/ScriptExpression.h"
#include "ScriptEngine3Expressions/Evaluator.h"
#include "strings/StringNumbers.h"

namespace {

bool nullArguments(ScriptEngine* engine, ScriptBlock* block, ScriptArgs* args) {
    return engine == nullptr || block == nullptr || args == nullptr;
}

// The body of a statement; null after "<name>: #::11".
inline ScriptBlock* findBody(ScriptEngine* engine, const char* name, int blockNumber) {
    ScriptBlock* body = blockTemplate(engine, blockNumber);
    if (body == nullptr) logError(engine->logger, "%s: #::11", name);
    return body;
}

// Puts a body on the stack, inside `block`; null after "<name>: <message>".
inline ScriptBlock* pushBody(ScriptEngine* engine, ScriptBlock* block, const char* name,
                             ScriptBlock* body, int blockNumber) {
    PushFailure failure;
    ScriptBlock* instance = blockPush(engine, body, block, &failure);
    if (instance != nullptr) [[likely]]
        return instance;
    if (failure == PushFailure::NoInstance)
        logError(engine->logger, "%s: Failed to initialize script block %u", name,
                 static_cast<uint32_t>(blockNumber));
    else
        logError(engine->logger, "%s: #::100", name);
    return nullptr;
}

int failedBody(ScriptEngine* engine, const char* name, int blockNumber) {
    logError(engine->logger, "%s: Failed to execute script block %u", name,
             static_cast<uint32_t>(blockNumber));
    return kError;
}

// Runs the body of a branch inside `block`; the status of the statement.
inline int runBody(ScriptEngine* engine, ScriptBlock* block, const char* name, ScriptBlock* body,
                   int blockNumber) {
    ScriptBlock* instance = pushBody(engine, block, name, body, blockNumber);
    if (instance == nullptr) return kInvalidCall;
    const bool good = scriptEngineRunBlock(engine, instance);
    stackPop(engine);
    return good ? kDone : failedBody(engine, name, blockNumber);
}

// The truth of a condition that is no expression of the block itself.
[[gnu::noinline]] bool otherCondition(ScriptEngine* engine, ScriptBlock* block, ScriptArgs* args,
                                      ScriptTruth* truth) {
    const ScriptObject* object = scriptBlockSearchPlace(block, &args->items[0], nullptr);
    if (object != nullptr && object->type == kTypeNumber) {
        *truth = object->number == 0 ? kFalse : kTrue;
        return true;
    }
    object = scriptEngineGetParam(engine, block, args, 0, kTypeUndef, true);
    if (object == nullptr) return false;
    *truth = scriptObjectGetBool(engine, object, block);
    return true;
}

// The truth of a branch's condition. False when the argument cannot be fetched.
inline bool branchCondition(ScriptEngine* engine, ScriptBlock* block, ScriptArgs* args,
                            ScriptTruth* truth) {
    const ExprStep* steps = scriptArgumentSteps(block, args);
    if (steps == nullptr) return otherCondition(engine, block, args, truth);
    if (scriptEngineRunTruth(engine, block, steps, truth)) return true;
    logError(engine->logger, "Parameter %u is not (properly) defined", 1u);
    return false;
}

// What a branch does whose condition has been asked.
int takeBranch(ScriptEngine* engine, ScriptBlock* block, ScriptTruth truth, ScriptBlock* body,
               int blockNumber, const char* name) {
    block->lastCondition = static_cast<uint8_t>(truth);
    if (truth == kTrue) return runBody(engine, block, name, body, blockNumber);
    if (truth == kFalse) return kDone;
    logError(engine->logger, "%s: Unable to determine boolean result of condition", name);
    logLocation(engine->logger, kLogError);
    return kError;
}

// What `if` does, and `elseif` when no branch before it was taken.
int branch(ScriptEngine* engine, ScriptBlock* block, ScriptArgs* args, int blockNumber,
           const char* name) {
    ScriptBlock* body = findBody(engine, name, blockNumber);
    if (body == nullptr) return kInvalidCall;
    ScriptTruth truth;
    if (!branchCondition(engine, block, args, &truth)) return kError;
    return takeBranch(engine, block, truth, body, blockNumber, name);
}

bool hasPreviousIf(ScriptEngine* engine, ScriptBlock* block, const char* name) {
    if (block->lastCondition != kConditionNone) return true;
    logError(engine->logger, "%s: Missing previous if", name);
    logLocation(engine->logger, kLogError);
    return false;
}

// An argument that a loop of `block` asks for again and again: where it stands is
// looked up once, its value each time.
class LoopArgument {
  public:
    LoopArgument(ScriptEngine* engine, ScriptBlock* block, ScriptArgs* args, uint32_t index)
        : arg_(&args->items[index]), object_(scriptBlockSearchPlace(block, arg_, nullptr)) {
        if (object_ == nullptr) logError(engine->logger, "Invalid first parameter");
    }
    bool present() const { return object_ != nullptr; }
    ScriptTruth truth(ScriptEngine* engine, ScriptBlock* block) {
        if (!isQuick(block)) return otherTruth(engine, block);
        ScriptTruth truth;
        return scriptEngineRunTruth(engine, block, steps_, &truth) ? truth : kNoTruth;
    }
    void run(ScriptEngine* engine, ScriptBlock* block) {
        if (isQuick(block))
            scriptEngineRunQuietly(engine, block, steps_);
        else if (object_->type == kTypeExpr)
            runProgram(engine, block, kWantNothing);
    }

  private:
    bool isQuick(const ScriptBlock* block) const {
        return steps_ != nullptr && block->ownLiterals == nullptr;
    }
    [[gnu::noinline]] ScriptTruth otherTruth(ScriptEngine* engine, ScriptBlock* block) {
        if (object_->type == kTypeExpr) return runProgram(engine, block, kWantTruth);
        // Looked up anew: what was the template's may have become the block's own.
        const ScriptObject* object = scriptBlockSearchPlace(block, arg_, nullptr);
        if (object != nullptr && object->type == kTypeNumber)
            return object->number == 0 ? kFalse : kTrue;
        return scriptObjectGetBool(engine, object, block);
    }
    // Runs the expression as it comes; after its first run it may be a quick one.
    [[gnu::noinline]] ScriptTruth runProgram(ScriptEngine* engine, ScriptBlock* block,
                                             EvalWant want) {
        EvalResult result;
        const bool good =
            scriptEngineRunExpression(engine, block, object_->expression, want, &result);
        if (object_->isShared()) steps_ = scriptQuickSteps(object_->expression);
        return good ? static_cast<ScriptTruth>(static_cast<int>(result.number)) : kNoTruth;
    }

    ScriptArg* arg_;
    ScriptObject* object_;
    const ExprStep* steps_ = nullptr;
};

// Whether a loop goes on after what is on its way out of the round.
bool goesOn(ScriptEngine* engine) {
    engine->pending &= static_cast<uint8_t>(~kContinuePending);
    const bool leave = engine->pending != 0;
    // A `return` and an `exit` go on to where they end.
    engine->pending &= static_cast<uint8_t>(~kBreakPending);
    return !leave;
}

// The rounds of a loop; `step` may be null. One instance serves for all of them.
int rounds(ScriptEngine* engine, ScriptBlock* block, int blockNumber, const char* name,
           LoopArgument condition, LoopArgument* step) {
    int status = kDone;
    ScriptBlock* body = nullptr;
    for (;;) {
        const ScriptTruth truth = condition.truth(engine, block);
        if (truth != kTrue) {
            if (truth == kFalse) break;
            logError(engine->logger, "%s: Unable to determine boolean result of condition", name);
            status = kError;
            break;
        }
        if (body == nullptr) [[unlikely]] {
            body = pushBody(engine, block, name, blockTemplate(engine, blockNumber), blockNumber);
            if (body == nullptr) return kInvalidCall;
        }
        if (!scriptEngineRunBlock(engine, body)) {
            status = failedBody(engine, name, blockNumber);
            break;
        }
        if (engine->pending != 0 && !goesOn(engine)) break;
        // What the round declared is gone before the step and the condition look.
        scriptBlockRenew(body);
        if (step != nullptr) step->run(engine, block);
    }
    if (body != nullptr) stackPop(engine);
    return status;
}

}  // namespace

int scriptEngineReturn(ScriptEngine* engine, ScriptBlock* block, ScriptArgs* args, int) {
    if (nullArguments(engine, block, args)) return kInvalidCall;
    ScriptTruth truth = kTrue;
    if (args->count > 0 && !branchCondition(engine, block, args, &truth)) return kError;
    engine->pending |= kReturnPending;
    engine->returnValue = truth == kTrue;
    return truth == kTrue ? kDone : kNegative;
}

int scriptEngineIf(ScriptEngine* engine, ScriptBlock* block, ScriptArgs* args, int blockNumber) {
    if (nullArguments(engine, block, args)) return kInvalidCall;
    return branch(engine, block, args, blockNumber, "scriptEngineIf");
}

int scriptEngineTakeIf(ScriptEngine* engine, ScriptBlock* block, ScriptTruth truth,
                       int blockNumber) {
    ScriptBlock* body = findBody(engine, "scriptEngineIf", blockNumber);
    if (body == nullptr) return kInvalidCall;
    return takeBranch(engine, block, truth, body, blockNumber, "scriptEngineIf");
}

int scriptEngineElseif(ScriptEngine* engine, ScriptBlock* block, ScriptArgs* args,
                       int blockNumber) {
    if (nullArguments(engine, block, args)) return kInvalidCall;
    if (!hasPreviousIf(engine, block, "scriptEngineElseif")) return kError;
    // A branch that was taken keeps the later ones from being asked.
    if (block->lastCondition == kConditionTrue) return kDone;
    return branch(engine, block, args, blockNumber, "scriptEngineElseif");
}

int scriptEngineElse(ScriptEngine* engine, ScriptBlock* block, ScriptArgs* args, int blockNumber) {
    if (nullArguments(engine, block, args)) return kInvalidCall;
    if (!hasPreviousIf(engine, block, "scriptEngineElse")) return kError;
    if (block->lastCondition == kConditionTrue) return kDone;
    ScriptBlock* body = findBody(engine, "scriptEngineElse", blockNumber);
    if (body == nullptr) return kInvalidCall;
    return runBody(engine, block, "scriptEngineElse", body, blockNumber);
}

int scriptEngineWhile(ScriptEngine* engine, ScriptBlock* block, ScriptArgs* args, int blockNumber) {
    constexpr char kName[] = "scriptEngineWhile";
    if (nullArguments(engine, block, args)) return kInvalidCall;
    if (findBody(engine, kName, blockNumber) == nullptr) return kInvalidCall;
    LoopArgument condition(engine, block, args, 0);
    if (!condition.present()) return kError;
    return rounds(engine, block, blockNumber, kName, condition, nullptr);
}

int scriptEngineFor(ScriptEngine* engine, ScriptBlock* block, ScriptArgs* args, int blockNumber) {
    constexpr char kName[] = "scriptEngineFor";
    if (nullArguments(engine, block, args)) return kInvalidCall;
    if (findBody(engine, kName, blockNumber) == nullptr) return kInvalidCall;
    if (scriptEngineGetParam(engine, block, args, 0, kTypeUndef, true) == nullptr) return kError;
    LoopArgument condition(engine, block, args, 1);
    if (!condition.present()) return kError;
    LoopArgument step(engine, block, args, 2);
    if (!step.present()) return kError;
    return rounds(engine, block, blockNumber, kName, condition, &step);
}

int scriptEngineBreak(ScriptEngine* engine, ScriptBlock* block, ScriptArgs* args, int) {
    if (nullArguments(engine, block, args)) return kInvalidCall;
    engine->pending |= kBreakPending;
    return kDone;
}

int scriptEngineContinue(ScriptEngine* engine, ScriptBlock* block, ScriptArgs* args, int) {
    if (nullArguments(engine, block, args)) return kInvalidCall;
    engine->pending |= kContinuePending;
    return kDone;
}

int scriptEngineExit(ScriptEngine* engine, ScriptBlock* block, ScriptArgs* args, int) {
    Arguments in(engine, block, args);
    if (in.ok() && in.count() > 0) {
        const ScriptObject* code = in.retyped(0, kTypeNumber);
        if (in.ok()) engine->exitValue = numberToInt32(code->number);
    }
    if (!in.ok()) return in.status();
    engine->pending |= kExitPending;
    return kDone;
}

namespace {

int scriptEngineDirective(ScriptEngine*, ScriptBlock*, ScriptArgs*, int) {
    return kInvalidCall;
}

constexpr CommandRow directive(const char* name, uint32_t maxArgs, DirectiveKind kind) {
    return {.name = name,
            .handler = scriptEngineDirective,
            .minArgs = 1,
            .maxArgs = maxArgs,
            .scope = kAtFileLevel,
            .directive = kind};
}

constexpr CommandRow kDirectives[] = {
    directive("signature", 1, kDirectiveSignature),
    directive("include", 1, kDirectiveInclude),
    directive("limit", kManyArgs, kDirectiveLimit),
    directive("user", kManyArgs, kDirectiveUser),
    directive("group", kManyArgs, kDirectiveGroup),
    {.name = "function",
     .handler = scriptEngineDirective,
     .minArgs = 1,
     .maxArgs = kManyArgs,
     .targetSpec = "1-100",
     .scope = kAtFileLevel,
     .opensBlock = true,
     .directive = kDirectiveFunction},
};

constexpr CommandRow flow(const char* name, CommandHandler handler, uint32_t minArgs,
                          uint32_t maxArgs, FlowKind kind = kPlainCommand) {
    return {.name = name, .handler = handler, .minArgs = minArgs, .maxArgs = maxArgs, .flow = kind};
}

constexpr CommandRow opener(const char* name, CommandHandler handler, uint32_t args,
                            DirectiveKind kind = kNoDirective, FlowKind flow = kPlainCommand) {
    return {.name = name,
            .handler = handler,
            .minArgs = args,
            .maxArgs = args,
            .opensBlock = true,
            .directive = kind,
            .flow = flow};
}

constexpr CommandRow kFlowCommands[] = {
    flow("exit", scriptEngineExit, 0, 1),
    flow("call", scriptEngineCall, 1, kManyArgs, kCallCommand),
    flow("return", scriptEngineReturn, 0, 1),
    opener("if", scriptEngineIf, 1, kBranchIf, kIfCommand),
    opener("elseif", scriptEngineElseif, 1, kBranchElseif),
    opener("else", scriptEngineElse, 0, kBranchElse),
    opener("while", scriptEngineWhile, 1),
    opener("for", scriptEngineFor, 3),
    flow("break", scriptEngineBreak, 0, 0),
    flow("continue", scriptEngineContinue, 0, 0, kContinueCommand),
};

}  // namespace

std::span<const CommandRow> directiveCommands() {
    return kDirectives;
}

std::span<const CommandRow> flowCommands() {
    return kFlowCommands;
}
