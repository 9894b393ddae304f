#include "ScriptEngine3/BlockChain.h"

#include "ScriptEngine3/ResultSetting.h"
#include "ScriptEngine3Expressions/Evaluator.h"
#include "ScriptEngine3Expressions/ExpressionSteps.h"

namespace {

StepOutcome runEnd(const ExprStep*, ScriptBlock*, EvalValue*, StepStop*) {
    return kStepsEnded;
}

StepOutcome runStop(const ExprStep* step, ScriptBlock*, EvalValue* top, StepStop* stop) {
    return leaveStep(step, top, stop);
}

StepOutcome runDrop(const ExprStep* step, ScriptBlock* block, EvalValue* top, StepStop* stop) {
    drop(*--top);
    return runNext(step, block, top, stop);
}

StepOutcome runCheck(const ExprStep* step, ScriptBlock* block, EvalValue* top, StepStop* stop) {
    if (top[-1].object != nullptr) return leaveStep(step, top, stop);
    return runBranch(top[-1].number != 0, step, block, top - 1, stop);
}

StepOutcome runSucceedEval(const ExprStep* step, ScriptBlock* block, EvalValue* top,
                           StepStop* stop) {
    setResults(step->engine, true);
    return runNext(step, block, top, stop);
}

// An `if` leaves the other results as its body has left them.
StepOutcome runSucceedIf(const ExprStep* step, ScriptBlock* block, EvalValue* top, StepStop* stop) {
    setSuccess(step->engine, true);
    return runNext(step, block, top, stop);
}

bool namesResult(const ScriptEngine* engine, const ScriptExpression* expression) {
    for (const ExprToken& token : expression->tokens)
        for (const uint32_t id :
             {engine->errorVar, engine->successVar, engine->invalidArgsVar, engine->outOfMemoryVar})
            if (token.op == kOpValue && token.varId == id) return true;
    return false;
}

// Some steps keep a frame of the native stack until the chain stops: it does so
// after this many statements.
constexpr uint32_t kLinesWithoutRest = 64;

// The statements of a block that is longer have no chain: its memory would be
// worth more than the time.
constexpr size_t kChainLines = 20000;

// Builds a chain at the end of `steps`.
class ChainMaker {
  public:
    ChainMaker(ScriptEngine* engine, ScriptBlock* block, GrowArray<ExprStep>* steps)
        : engine_(engine), block_(block), steps_(steps) {}

    bool add(ScriptLine* line, uint32_t number) {
        number_ = number;
        line_ = line;
        const ScriptExpression* program = quickProgram(line);
        if (program == nullptr) return mark(kindOf(line), runStop);
        const bool isIf = line->flow == kIfCommand;
        return addProgram(*program, isIf) && (!isIf || mark(kStepBody, runStop)) &&
               succeed(isIf ? runSucceedIf : runSucceedEval) &&
               ((number + 1) % kLinesWithoutRest != 0 || mark(kStepRest, runStop));
    }
    bool end(uint32_t number) {
        number_ = number;
        return mark(kStepEnd, runEnd);
    }

  private:
    // The program of an `eval` or `if` that can run in a chain; null for any other.
    const ScriptExpression* quickProgram(ScriptLine* line) {
        if (line->flow != kEvalCommand && line->flow != kIfCommand) return nullptr;
        scriptBlockSearchPlace(block_, &line->args.items[0], nullptr);
        ScriptExpression* program = scriptArgumentProgram(block_, &line->args);
        if (program == nullptr || !scriptExpressionPrepare(program, block_)) return nullptr;
        // An `eval` that looks at the results sees them cleared.
        if (line->flow == kEvalCommand && namesResult(engine_, program)) return nullptr;
        return scriptArgumentSteps(block_, &line->args) == nullptr ? nullptr : program;
    }
    // Of the step of a statement that is no quick program.
    ExprStepKind kindOf(const ScriptLine* line) const {
        if (blockCallIsResolved(block_, line)) return kStepCall;
        return line->flow == kPlainCommand || line->flow == kIfCommand ? kStepHandler : kStepLine;
    }
    bool push(ExprStep step) {
        step.line = number_;
        return steps_->push(step);
    }
    bool mark(ExprStepKind kind, StepRunner run) {
        ExprStep step{};
        step.kind = kind;
        step.run = run;
        step.statement = line_;
        return push(step);
    }
    bool succeed(StepRunner run) {
        if (engine_->namedResults == 0) return true;
        ExprStep step{};
        step.kind = kStepSucceed;
        step.run = run;
        step.engine = engine_;
        return push(step);
    }
    bool addProgram(const ScriptExpression& program, bool isCondition) {
        for (ExprStep step : program.steps) {
            if (step.kind == kStepEnd) break;
            const bool ends = step.end == kAtEnd && scriptStepEndsInChain(&step, isCondition);
            if (!ends) scriptStepGoesOn(&step);
            if (!push(step)) return false;
            if (ends) return true;
        }
        return isCondition ? mark(kStepCheck, runCheck) : mark(kStepDrop, runDrop);
    }

    ScriptEngine* engine_;
    ScriptBlock* block_;
    GrowArray<ExprStep>* steps_;
    ScriptLine* line_ = nullptr;
    uint32_t number_ = 0;
};

}  // namespace

bool blockCallIsResolved(const ScriptBlock* block, const ScriptLine* line) {
    if (line->flow != kCallCommand || line->block == kNoBlock || block->ownLiterals != nullptr)
        return false;
    const ScriptArg& name = line->args.items[0];
    if (name.kind != kPlaceLiteral) return false;
    const ScriptObject* literal = block->shape->literals[name.slot];
    return literal->type == kTypeString && literal->isShared();
}

bool blockChainMake(ScriptEngine* engine, ScriptBlock* block) {
    BlockShape* shape = block->shape;
    if (shape->lines.size() > kChainLines) return false;
    ChainMaker maker(engine, block, &shape->chain);
    uint32_t number = 0;
    bool good = true;
    for (ScriptLine* line : shape->lines) good = good && maker.add(line, number++);
    if (good && maker.end(number))
        shape->chain.fit();
    else
        shape->chain.clear();
    return !shape->chain.empty();
}
