#include "ScriptEngine3/FlowCommands.h"

#include "ScriptEngine3/BlockExecution.h"
#include "ScriptEngine3/CallCommand.h"
#include "ScriptEngine3Defs/Arguments.h"
#include "ScriptEngine3Defs/ScriptEvaluator.h"
#include "ScriptEngine3Defs/ScriptExpression.h"
#include "ScriptEngine3Expressions/NumberSteps.h"
#include "strings/StringNumbers.h"

namespace {

bool nullArguments(ScriptEngine* engine, ScriptBlock* block, ScriptArgs* args) {
    return engine == nullptr || block == nullptr || args == nullptr;
}

// Puts a body on the stack, inside `block`; null after "<name>: <message>".
ScriptBlock* pushBody(ScriptEngine* engine, ScriptBlock* block, const char* name, int blockNumber) {
    PushFailure failure;
    ScriptBlock* body = blockPush(engine, blockNumber, block, &failure);
    if (failure == PushFailure::NoInstance)
        logError(engine->logger, "%s: Failed to initialize script block %u", name,
                 static_cast<uint32_t>(blockNumber));
    else if (failure != PushFailure::None)
        logError(engine->logger, failure == PushFailure::NoStack ? "%s: #::100" : "%s: #::11",
                 name);
    return body;
}

int failedBody(ScriptEngine* engine, const char* name, int blockNumber) {
    logError(engine->logger, "%s: Failed to execute script block %u", name,
             static_cast<uint32_t>(blockNumber));
    return kError;
}

// Runs the body of a branch inside `block`; the status of the statement.
int runBody(ScriptEngine* engine, ScriptBlock* block, const char* name, int blockNumber) {
    if (pushBody(engine, block, name, blockNumber) == nullptr) return kInvalidCall;
    if (scriptEngineRunStack(engine, true) != StackRun::Failed) return kDone;
    return failedBody(engine, name, blockNumber);
}

// The truth of a branch's condition. False when the argument cannot be fetched.
bool branchCondition(ScriptEngine* engine, ScriptBlock* block, ScriptArgs* args,
                     ScriptTruth* truth) {
    if (ScriptExpression* expression = scriptArgumentExpression(block, args->items[0])) {
        EvalResult result;
        if (scriptRunNumbers(expression, block, &result.number)) {
            *truth = result.number == 0 ? kFalse : kTrue;
            return true;
        }
        if (scriptEvaluator(engine, block, expression, kWantTruth, &result)) {
            *truth = static_cast<ScriptTruth>(static_cast<int>(result.number));
            return true;
        }
        logError(engine->logger, "Parameter %u is not (properly) defined", 1u);
        return false;
    }
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

// What `if` does, and `elseif` when no branch before it was taken.
int branch(ScriptEngine* engine, ScriptBlock* block, ScriptArgs* args, int blockNumber,
           const char* name) {
    if (!bodyExists(engine, name, blockNumber)) return kInvalidCall;
    ScriptTruth truth;
    if (!branchCondition(engine, block, args, &truth)) return kError;
    block->lastCondition = static_cast<uint8_t>(truth);
    if (truth == kNoTruth) {
        logError(engine->logger, "%s: Unable to determine boolean result of condition", name);
        logLocation(engine->logger, kLogError);
        return kError;
    }
    return truth == kTrue ? runBody(engine, block, name, blockNumber) : kDone;
}

bool hasPreviousIf(ScriptEngine* engine, ScriptBlock* block, const char* name) {
    if (block->lastCondition != kConditionNone) return true;
    logError(engine->logger, "%s: Missing previous if", name);
    logLocation(engine->logger, kLogError);
    return false;
}

// An argument that a loop asks for again and again: where it stands is looked
// up once, its value each time.
class LoopArgument {
  public:
    LoopArgument(ScriptEngine* engine, ScriptBlock* block, ScriptArgs* args, uint32_t index)
        : engine_(engine), block_(block), arg_(&args->items[index]) {
        object_ = scriptBlockSearchPlace(block, arg_, nullptr);
        if (object_ == nullptr) logError(engine->logger, "Invalid first parameter");
    }
    bool present() const { return object_ != nullptr; }
    ScriptTruth truth() const {
        if (object_->type != kTypeExpr) {
            // Looked up anew: what was the template's may have become the block's own.
            const ScriptObject* object = scriptBlockSearchPlace(block_, arg_, nullptr);
            if (object != nullptr && object->type == kTypeNumber)
                return object->number == 0 ? kFalse : kTrue;
            return scriptObjectGetBool(engine_, object, block_);
        }
        double number;
        if (scriptRunNumbers(object_->expression, block_, &number))
            return number == 0 ? kFalse : kTrue;
        return scriptEvaluateTruth(engine_, block_, object_->expression);
    }
    void run() const {
        EvalResult result;
        if (object_->type == kTypeExpr &&
            !scriptRunNumbers(object_->expression, block_, &result.number))
            scriptEvaluator(engine_, block_, object_->expression, kWantNothing, &result);
    }

  private:
    ScriptEngine* engine_;
    ScriptBlock* block_;
    ScriptArg* arg_;
    ScriptObject* object_;
};

// What the end of a round means for the loop.
enum class RoundEnd { GoOn, Leave };

RoundEnd endOfRound(ScriptEngine* engine) {
    if (engine->pending == 0) return RoundEnd::GoOn;
    engine->pending &= static_cast<uint8_t>(~kContinuePending);
    const bool leave = engine->pending != 0;
    // A `return` and an `exit` go on to where they end.
    engine->pending &= static_cast<uint8_t>(~kBreakPending);
    return leave ? RoundEnd::Leave : RoundEnd::GoOn;
}

// The rounds of a loop; `step` may be null. One instance serves for all of them.
int rounds(ScriptEngine* engine, ScriptBlock* block, int blockNumber, const char* name,
           const LoopArgument& condition, const LoopArgument* step) {
    int status = kDone;
    ScriptBlock* body = nullptr;
    for (;;) {
        const ScriptTruth truth = condition.truth();
        if (truth == kFalse) break;
        if (truth == kNoTruth) {
            logError(engine->logger, "%s: Unable to determine boolean result of condition", name);
            status = kError;
            break;
        }
        if (body == nullptr) body = pushBody(engine, block, name, blockNumber);
        if (body == nullptr) return kInvalidCall;
        if (!stackRunTop(engine, body)) {
            status = failedBody(engine, name, blockNumber);
            break;
        }
        if (endOfRound(engine) == RoundEnd::Leave) break;
        // What the round declared is gone before the step and the condition look.
        scriptBlockRenew(body);
        if (step != nullptr) step->run();
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
    return runBody(engine, block, "scriptEngineElse", blockNumber);
}

int scriptEngineWhile(ScriptEngine* engine, ScriptBlock* block, ScriptArgs* args, int blockNumber) {
    constexpr char kName[] = "scriptEngineWhile";
    if (nullArguments(engine, block, args)) return kInvalidCall;
    if (!bodyExists(engine, kName, blockNumber)) return kInvalidCall;
    const LoopArgument condition(engine, block, args, 0);
    if (!condition.present()) return kError;
    return rounds(engine, block, blockNumber, kName, condition, nullptr);
}

int scriptEngineFor(ScriptEngine* engine, ScriptBlock* block, ScriptArgs* args, int blockNumber) {
    constexpr char kName[] = "scriptEngineFor";
    if (nullArguments(engine, block, args)) return kInvalidCall;
    if (!bodyExists(engine, kName, blockNumber)) return kInvalidCall;
    if (scriptEngineGetParam(engine, block, args, 0, kTypeUndef, true) == nullptr) return kError;
    const LoopArgument condition(engine, block, args, 1);
    if (!condition.present()) return kError;
    const LoopArgument step(engine, block, args, 2);
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
                            DirectiveKind kind = kNoDirective) {
    return {.name = name,
            .handler = handler,
            .minArgs = args,
            .maxArgs = args,
            .opensBlock = true,
            .directive = kind};
}

constexpr CommandRow kFlowCommands[] = {
    flow("exit", scriptEngineExit, 0, 1),
    flow("call", scriptEngineCall, 1, kManyArgs, kCallCommand),
    flow("return", scriptEngineReturn, 0, 1),
    opener("if", scriptEngineIf, 1, kBranchIf),
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
