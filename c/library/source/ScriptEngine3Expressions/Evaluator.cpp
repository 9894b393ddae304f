#include "ScriptEngine3Expressions/Evaluator.h"

#include "ScriptEngine3Expressions/ExpressionSteps.h"
#include "ScriptEngine3Expressions/NumberSteps.h"
#include "ScriptEngine3Expressions/TextSteps.h"
#include "strings/StringCompare.h"
#include "strings/StringMatch.h"
#include "strings/StringNumbers.h"

namespace {

// Values that a run keeps without asking for memory.
constexpr uint32_t kShortStack = 16;

// A result that the run owns from now on.
EvalValue valueOfMade(ScriptObject* object) {
    if (object->type == kTypeNumber) {
        const double number = object->number;
        scriptObjectDestroy(&object);
        return valueOfNumber(number);
    }
    object->flags |= kObjectMade;
    return {object, 0};
}

// One run of a program.
class Evaluation {
  public:
    Evaluation(ScriptEngine* engine, ScriptBlock* block, EvalWant want)
        : engine_(engine), block_(block), want_(want) {}

    // Goes on with a program from a step on that has no short way; leaves the result
    // at the bottom of the stack, whose values are ended when the program fails.
    bool run(const ExprStep* step, EvalValue* stack, EvalValue* top);

  private:
    bool slowStep(ExprStep* step, EvalValue*& top);
    bool load(ExprOperand* operand, EvalValue*& top, EvalValue* value);
    bool loadBoth(ExprStep* step, EvalValue*& top, EvalValue* left, EvalValue* right);
    bool unary(const ExprStep& step, EvalValue right, EvalValue* result);
    bool binary(const ExprStep& step, EvalValue& left, EvalValue& right, EvalValue* result);
    bool onNumbers(const ExprStep& step, const EvalValue& left, const EvalValue& right,
                   EvalValue* result);
    bool ofStrings(const ExprStep& step, EvalValue& left, const EvalValue& right,
                   EvalValue* result);
    static bool joined(const ScriptObject* left, const EvalValue& right, EvalValue* result);
    bool assignAny(const ExprStep& step, EvalValue& left, EvalValue& right, EvalValue* result);
    bool byOperation(uint8_t op, EvalValue* left, EvalValue& right, EvalValue* result);
    bool copyOf(ScriptObject* object, bool isLast, EvalValue* result);
    bool toObject(EvalValue& value);
    bool own(EvalValue& value);
    bool fail(const char* message);

    ScriptEngine* engine_;
    ScriptBlock* block_;
    EvalWant want_;
};

bool Evaluation::fail(const char* message) {
    logError(engine_->logger, message);
    return false;
}

bool Evaluation::load(ExprOperand* operand, EvalValue*& top, EvalValue* value) {
    if (operand->from == kFromStack) {
        // Field by field, as they were stored: both at once would wait for both stores.
        --top;
        value->object = top->object;
        value->number = top->number;
        return true;
    }
    value->object = scriptBlockSearchPlace(block_, &operand->place, nullptr);
    if (value->object != nullptr) return true;
    return fail("scriptEngineEvaluate: Undefined variable in expression");
}

// The right operand is on top of the left one; a variable on the left is
// looked up before one on the right.
bool Evaluation::loadBoth(ExprStep* step, EvalValue*& top, EvalValue* left, EvalValue* right) {
    if (step->left.from == kFromStack)
        return load(&step->right, top, right) && load(&step->left, top, left);
    return load(&step->left, top, left) && load(&step->right, top, right);
}

bool Evaluation::toObject(EvalValue& value) {
    if (value.object != nullptr) return true;
    value.object = scriptObjectCreateNumber(value.number);
    if (value.object == nullptr) return false;
    value.object->flags |= kObjectMade;
    return true;
}

// Makes sure that what is about to change, or to be referred to, is this
// instance's own and not the template's.
bool Evaluation::own(EvalValue& value) {
    if (!value.object->isShared()) return true;
    value.object = scriptBlockOwnLiteral(block_, value.object);
    return value.object != nullptr;
}

// The result of an operation that leaves its value in a variable. Where nobody
// keeps the last result, the variable itself serves.
bool Evaluation::copyOf(ScriptObject* object, bool isLast, EvalValue* result) {
    if (object->type == kTypeNumber) {
        *result = valueOfNumber(object->number);
        return true;
    }
    if (isLast && want_ != kWantValue && object->type != kTypePointer &&
        scriptObjectCanClone(object)) {
        *result = {object, 0};
        return true;
    }
    ScriptObject* copy = scriptObjectClone(object);
    if (copy == nullptr) return false;
    *result = valueOfMade(copy);
    return true;
}

// Two numbers, wherever they come from.
bool Evaluation::onNumbers(const ExprStep& step, const EvalValue& left, const EvalValue& right,
                           EvalValue* result) {
    const double* leftNumber = numberIn(left);
    const double* rightNumber = numberIn(right);
    if (leftNumber == nullptr || rightNumber == nullptr) return false;
    if (step.kind == kStepBinary) {
        result->object = nullptr;
        return ofNumbers(step.op, *leftNumber, *rightNumber, &result->number);
    }
    if (left.object == nullptr || left.object->isShared()) return false;
    double value = *rightNumber;
    if (step.op != kOpAssign &&
        !ofNumbers(kPlainOperators[step.op - kOpAssign], *leftNumber, value, &value))
        return false;
    left.object->number = value;
    *result = valueOfNumber(value);
    return true;
}

bool isOrderOperator(uint8_t op) {
    return (op >= kOpLt && op <= kOpGe) || op == kOpEq || op == kOpNe;
}

bool Evaluation::binary(const ExprStep& step, EvalValue& left, EvalValue& right,
                        EvalValue* result) {
    bool good = onNumbers(step, left, right, result);
    if (!good && left.object != nullptr && left.object->type == kTypeString)
        good = ofStrings(step, left, right, result);
    if (!good)
        good = step.op == kOpAssign && left.object != nullptr && left.object->type != kTypePointer
                   ? assignAny(step, left, right, result)
                   : byOperation(step.op, &left, right, result);
    drop(left);
    drop(right);
    return good;
}

// What needs no object when the left side is a string: an order or a match of
// two strings, and a text that grows where it is, when nobody can see the moment in
// between (`x .= y`, `x += y`, a chain of `.`). False when it is none of these.
bool Evaluation::ofStrings(const ExprStep& step, EvalValue& left, const EvalValue& right,
                           EvalValue* result) {
    const bool twoStrings = right.object != nullptr && right.object->type == kTypeString;
    if (twoStrings && isOrderOperator(step.op)) {
        const int order = stringCompare(&left.object->string, &right.object->string);
        result->object = nullptr;
        return ofNumbers(step.op, order, 0, &result->number);
    }
    if (twoStrings && step.op == kOpMatch) {
        *result = valueOfNumber(stringMatch(&left.object->string, &right.object->string));
        return true;
    }
    const bool assigns = step.op == kOpConcatAssign || step.op == kOpAddAssign;
    const bool joins = step.op == kOpConcat || step.op == kOpPlus;
    const bool chains = joins && isMade(left);
    if (joins && !chains) return joined(left.object, right, result);
    if ((!assigns && !chains) || left.object->isShared() || left.object == right.object)
        return false;
    const uint32_t before = left.object->string.length;
    const double* number = numberIn(right);
    if (number != nullptr) {
        if (!stringAppendDouble(&left.object->string, *number)) return false;
    } else if (!twoStrings || !stringAppend(&left.object->string, &right.object->string)) {
        return false;
    }
    if (assigns) {
        if (copyOf(left.object, step.end != kMidway, result)) return true;
        stringSetLength(&left.object->string, before);
        return false;
    }
    *result = left;
    left.object = nullptr;
    return true;
}

// A new text of a string and what stands behind it, a string or a number.
bool Evaluation::joined(const ScriptObject* left, const EvalValue& right, EvalValue* result) {
    const double* number = numberIn(right);
    if (number == nullptr && right.object->type != kTypeString) return false;
    char digits[kNumberTextMax];
    const std::string_view piece = number != nullptr
                                       ? std::string_view(digits, numberToText(*number, digits))
                                       : stringView(&right.object->string);
    ScriptObject* made = scriptJoinTexts(stringView(&left->string), piece);
    if (made == nullptr) return false;
    made->flags = kObjectMade;
    *result = {made, 0};
    return true;
}

// A text that this run has made and nobody else has goes over to a string as it is.
bool takeText(ScriptObject* target, const EvalValue& made) {
    return isMade(made) && made.object->type == kTypeString && target->type == kTypeString &&
           !target->isShared() && stringTake(&target->string, &made.object->string);
}

bool Evaluation::assignAny(const ExprStep& step, EvalValue& left, EvalValue& right,
                           EvalValue* result) {
    const bool taken = takeText(left.object, right);
    if (!taken &&
        (!toObject(right) || !own(left) || !scriptObjectAssign(engine_, left.object, right.object)))
        fail("evaluateAssign: Failed to assign");
    else if (copyOf(left.object, step.end != kMidway, result))
        return true;
    return fail("scriptEngineEvaluate: Failed to evaluate expression");
}

// Through the table of operations, for all that has no shorter way.
bool Evaluation::byOperation(uint8_t op, EvalValue* left, EvalValue& right, EvalValue* result) {
    const ScriptOperator operation = scriptOperatorRow(op).operation;
    const bool assigns = op >= kOpAssign;
    const bool changesRight = assigns || op == kOpIncr || op == kOpDecr;
    ScriptObject* made = nullptr;
    if (operation != nullptr && (left == nullptr || toObject(*left)) && toObject(right) &&
        (!assigns || own(*left)) && (!changesRight || own(right)))
        made = operation(engine_, block_, left == nullptr ? nullptr : left->object, right.object);
    if (made == nullptr) return fail("scriptEngineEvaluate: Failed to evaluate expression");
    // An empty pointer may have been aimed at the operand: it lives on as long
    // as the statement's other temporaries.
    if (assigns && left->object->type == kTypePointer && isMade(right)) {
        right.object->flags &= ~kObjectMade;
        scriptTemporariesAdd(right.object);
    }
    *result = valueOfMade(made);
    return true;
}

bool Evaluation::unary(const ExprStep& step, EvalValue right, EvalValue* result) {
    const double* number = numberIn(right);
    if (number != nullptr) {
        if (step.op == kOpNot) {
            *result = valueOfNumber(*number == 0);
            return true;
        }
        if ((step.op == kOpIncr || step.op == kOpDecr) && right.object != nullptr &&
            !right.object->isShared()) {
            right.object->number += step.op == kOpIncr ? 1 : -1;
            *result = valueOfNumber(right.object->number);
            return true;
        }
    }
    const bool good = byOperation(step.op, nullptr, right, result);
    drop(right);
    return good;
}

// One step; its result is made where it belongs, on top of what is left.
bool Evaluation::slowStep(ExprStep* step, EvalValue*& top) {
    EvalValue left;
    EvalValue right;
    switch (step->kind) {
        case kStepBinary:
        case kStepAssign:
            return loadBoth(step, top, &left, &right) && binary(*step, left, right, top);
        case kStepUnary:
            return load(&step->right, top, &right) && unary(*step, right, top);
        case kStepPush:
            return load(&step->right, top, top);
        case kStepClone:
            return load(&step->right, top, &right) &&
                   (copyOf(right.object, true, top) ||
                    fail("scriptEngineEvaluate: Invalid expression"));
        default:
            return fail("scriptEngineEvaluate: Invalid expression");
    }
}

// An instance with literals of its own takes the long way for every step.
bool Evaluation::run(const ExprStep* step, EvalValue* stack, EvalValue* top) {
    while (step->kind != kStepEnd) {
        if (!slowStep(const_cast<ExprStep*>(step), top)) {
            while (top != stack) drop(*--top);
            return false;
        }
        ++top;
        ++step;
        if (block_->ownLiterals != nullptr) continue;
        StepStop stop;
        if (stepsEnded(step->run(step, block_, top, &stop), stack)) return true;
        step = stop.step;
        top = stop.top;
    }
    return true;
}

// Gives the caller what it wants of the result; false when that cannot be made.
bool handOver(ScriptEngine* engine, ScriptBlock* block, EvalWant want, const EvalValue& value,
              EvalResult* result) {
    if (want == kWantNothing) {
        drop(value);
        return true;
    }
    if (want == kWantTruth) {
        const double* number = numberIn(value);
        result->number = number != nullptr ? (*number == 0 ? kFalse : kTrue)
                                           : scriptObjectGetBool(engine, value.object, block);
        drop(value);
        return true;
    }
    result->number = value.number;
    result->object = isMade(value) ? value.object : scriptObjectClone(value.object);
    if (result->object != nullptr) result->object->flags = 0;
    if (result->object != nullptr || value.object == nullptr) return true;
    logError(engine->logger, "scriptEngineEvaluate: Failed to evaluate expression");
    return false;
}

[[gnu::noinline]] bool outOfMemory(ScriptEngine* engine) {
    logError(engine->logger, "scriptEngineEvaluate: #::100");
    logLocation(engine->logger, kLogError);
    return false;
}

// Runs a program that is ready.
[[gnu::always_inline]] inline bool runReady(ScriptEngine* engine, ScriptBlock* block,
                                            const ScriptExpression* expression, EvalWant want,
                                            EvalValue* stack, EvalResult* result) {
    const ExprStep* step = expression->steps.begin();
    StepStop stop{step, stack};
    if (block->ownLiterals != nullptr || !stepsEnded(step->run(step, block, stack, &stop), stack))
        return scriptEngineGoOn(engine, block, want, stack, &stop, result);
    if (stack[0].object != nullptr)
        return scriptEngineGoOn(engine, block, want, stack, nullptr, result);
    const double number = stack[0].number;
    result->number = want == kWantTruth ? number != 0 : number;
    return true;
}

// A program that runs for the first time, or keeps many values at once.
[[gnu::noinline]] bool runUnusual(ScriptEngine* engine, ScriptBlock* block,
                                  ScriptExpression* expression, EvalWant want, EvalResult* result) {
    if (!scriptExpressionPrepare(expression, block)) return outOfMemory(engine);
    auto* stack = static_cast<EvalValue*>(memAlloc(sizeof(EvalValue) * expression->stackDepth));
    if (stack == nullptr) return outOfMemory(engine);
    const bool good = runReady(engine, block, expression, want, stack, result);
    memFree(&stack);
    return good;
}

}  // namespace

bool scriptEngineGoOn(ScriptEngine* engine, ScriptBlock* block, EvalWant want, EvalValue* stack,
                      const StepStop* stop, EvalResult* result) {
    if (stop != nullptr && !Evaluation(engine, block, want).run(stop->step, stack, stop->top))
        return false;
    return handOver(engine, block, want, stack[0], result);
}

bool scriptEngineFindTruth(ScriptEngine* engine, ScriptBlock* block, EvalValue* stack,
                           const StepStop* stop, ScriptTruth* truth) {
    EvalResult result;
    const bool good = scriptEngineGoOn(engine, block, kWantTruth, stack, stop, &result);
    *truth = static_cast<ScriptTruth>(static_cast<int>(result.number));
    return good;
}

ScriptExpression* scriptArgumentProgram(const ScriptBlock* block, const ScriptArgs* args) {
    const ScriptArg& arg = args->items[0];
    if (arg.kind != kPlaceLiteral || block->ownLiterals != nullptr) return nullptr;
    const ScriptObject* object = block->shape->literals[arg.slot];
    return object->type == kTypeExpr && object->isShared() ? object->expression : nullptr;
}

bool scriptEngineRunExpression(ScriptEngine* engine, ScriptBlock* block,
                               ScriptExpression* expression, EvalWant want, EvalResult* result) {
    if (expression->stackDepth - 1 >= kShortStack)
        return runUnusual(engine, block, expression, want, result);
    EvalValue stack[kShortStack];
    return runReady(engine, block, expression, want, stack, result);
}

ScriptObject* scriptEngineEvaluate(ScriptEngine* engine, ScriptBlock* block,
                                   ScriptExpression* expression) {
    if (engine == nullptr || block == nullptr || expression == nullptr) return nullptr;
    return scriptEvaluateToObject(engine, block, expression);
}

namespace {
int operatorUsers = 0;
}

bool scriptOperatorsInit() {
    ++operatorUsers;
    scriptEvaluator = scriptEngineRunExpression;
    return true;
}

void scriptOperatorsDone() {
    if (operatorUsers > 0 && --operatorUsers == 0) scriptEvaluator = nullptr;
}
