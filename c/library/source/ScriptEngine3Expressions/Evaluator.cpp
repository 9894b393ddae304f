#include "ScriptEngine3Expressions/Evaluator.h"

#include <cmath>

#include "ScriptEngine3Expressions/ExpressionSteps.h"
#include "ScriptEngine3Expressions/Operations.h"
#include "strings/StringCompare.h"
#include "strings/StringNumbers.h"

namespace {

// A value on its way through a program: a plain number, a variable, or an
// object that this run has made and owns.
struct EvalValue {
    ScriptObject* object;  // null: the number counts
    double number;
    bool owned;

    static EvalValue ofNumber(double number) { return {nullptr, number, false}; }
    static EvalValue ofVariable(ScriptObject* object) { return {object, 0, false}; }
    static EvalValue ofResult(ScriptObject* object) { return {object, 0, true}; }
};

inline bool isNumber(const EvalValue& value, double* number) {
    if (value.object == nullptr) {
        *number = value.number;
        return true;
    }
    if (value.object->type != kTypeNumber) return false;
    *number = value.object->number;
    return true;
}

inline void drop(EvalValue& value) {
    if (value.owned) scriptObjectDestroy(&value.object);
}

// One run of a program.
class Evaluation {
  public:
    Evaluation(ScriptEngine* engine, ScriptBlock* block, EvalWant want)
        : engine_(engine), block_(block), want_(want) {}

    bool run(ScriptExpression* expression, EvalValue* stack, EvalValue* result);

  private:
    bool push(VarPlace* place, EvalValue* value);
    bool unary(uint8_t op, EvalValue& right, EvalValue* result);
    bool binary(const ExprStep& step, EvalValue& left, EvalValue& right, EvalValue* result);
    bool numbers(uint8_t op, double left, double right, EvalValue* result);
    bool assignNumber(const ExprStep& step, EvalValue& left, double right, EvalValue* result);
    bool strings(const ExprStep& step, EvalValue& left, EvalValue& right, EvalValue* result);
    bool appendInPlace(const ExprStep& step, EvalValue& left, EvalValue& right, EvalValue* result);
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

inline bool Evaluation::push(VarPlace* place, EvalValue* value) {
    ScriptObject* object = scriptBlockSearchPlace(block_, place, nullptr);
    if (object == nullptr) return fail("scriptEngineEvaluate: Undefined variable in expression");
    *value = EvalValue::ofVariable(object);
    return true;
}

bool Evaluation::toObject(EvalValue& value) {
    if (value.object != nullptr) return true;
    value.object = scriptObjectCreateNumber(value.number);
    value.owned = value.object != nullptr;
    return value.owned;
}

// Makes sure that what is about to change, or to be referred to, is this
// instance's own and not the template's.
bool Evaluation::own(EvalValue& value) {
    if (value.object == nullptr || !value.object->isShared()) return true;
    value.object = scriptBlockOwnLiteral(block_, value.object);
    return value.object != nullptr;
}

// The result of an operation that leaves its value in a variable. Where nobody
// keeps the last result, the variable itself serves.
bool Evaluation::copyOf(ScriptObject* object, bool isLast, EvalValue* result) {
    if (object->type == kTypeNumber) {
        *result = EvalValue::ofNumber(object->number);
        return true;
    }
    if (isLast && want_ != kWantValue && object->type != kTypePointer &&
        scriptObjectCanClone(object)) {
        *result = EvalValue::ofVariable(object);
        return true;
    }
    ScriptObject* copy = scriptObjectClone(object);
    *result = EvalValue::ofResult(copy);
    return copy != nullptr;
}

inline bool Evaluation::numbers(uint8_t op, double left, double right, EvalValue* result) {
    double value;
    switch (op) {
        case kOpPlus:
            value = left + right;
            break;
        case kOpMinus:
            value = left - right;
            break;
        case kOpMult:
            value = left * right;
            break;
        case kOpDiv:
            value = right == 0 ? 0 : left / right;
            break;
        case kOpMod:
            value = evaluateRemainder(left, right);
            break;
        case kOpLt:
            value = left < right;
            break;
        case kOpGt:
            value = left > right;
            break;
        // An unordered pair counts as equal.
        case kOpLe:
            value = !(left > right);
            break;
        case kOpGe:
            value = !(left < right);
            break;
        case kOpEq:
            value = !(left < right) && !(left > right);
            break;
        case kOpNe:
            value = left < right || left > right;
            break;
        case kOpMax:
            value = left > right ? left : right;
            break;
        case kOpMin:
            value = left < right ? left : right;
            break;
        case kOpAvg:
            value = (left + right) * 0.5;
            break;
        case kOpPow:
            value = std::pow(left, right);
            break;
        case kOpAnd:
            value = left != 0 && right != 0;
            break;
        case kOpOr:
            value = left != 0 || right != 0;
            break;
        default:
            return false;
    }
    *result = EvalValue::ofNumber(value);
    return true;
}

// The plain operator of a compound assignment; 0 for any other.
constexpr uint8_t plainOperator(uint8_t op) {
    switch (op) {
        case kOpAddAssign:
            return kOpPlus;
        case kOpSubAssign:
            return kOpMinus;
        case kOpMultAssign:
            return kOpMult;
        case kOpDivAssign:
            return kOpDiv;
        case kOpModAssign:
            return kOpMod;
        case kOpPowAssign:
            return kOpPow;
        default:
            return 0;
    }
}

// An assignment of a number to a variable that holds a number.
inline bool Evaluation::assignNumber(const ExprStep& step, EvalValue& left, double right,
                                     EvalValue* result) {
    if (left.object == nullptr || left.object->type != kTypeNumber || left.object->isShared())
        return false;
    if (step.op == kOpAssign) {
        *result = EvalValue::ofNumber(right);
    } else {
        const uint8_t plain = plainOperator(step.op);
        if (plain == 0 || !numbers(plain, left.object->number, right, result)) return false;
    }
    left.object->number = result->number;
    return true;
}

// Comparisons of two strings, which make no object.
inline bool Evaluation::strings(const ExprStep& step, EvalValue& left, EvalValue& right,
                                EvalValue* result) {
    if (step.op < kOpLt || step.op > kOpNe || right.object->type != kTypeString) return false;
    if (step.op > kOpGe && step.op < kOpEq) return false;
    const int order = stringCompare(&left.object->string, &right.object->string);
    return numbers(step.op, order, 0, result);
}

// `x .= y` and `x += y` on a string, and a chain of `.`: the text grows where
// it is, when nobody can see the moment in between.
bool Evaluation::appendInPlace(const ExprStep& step, EvalValue& left, EvalValue& right,
                               EvalValue* result) {
    const bool assigns = step.op == kOpConcatAssign || step.op == kOpAddAssign;
    const bool chains = left.owned && (step.op == kOpConcat || step.op == kOpPlus);
    if ((!assigns && !chains) || left.object->isShared() || left.object == right.object)
        return false;
    double number;
    if (isNumber(right, &number)) {
        if (!stringAppendDouble(&left.object->string, number)) return false;
    } else if (right.object->type == kTypeString) {
        if (!stringAppend(&left.object->string, &right.object->string)) return false;
    } else {
        return false;
    }
    if (assigns) return copyOf(left.object, step.isLast, result);
    *result = left;
    left.owned = false;
    return true;
}

// Through the table of operations, for all that has no shorter way.
bool Evaluation::byOperation(uint8_t op, EvalValue* left, EvalValue& right, EvalValue* result) {
    const ScriptOperator operation = scriptOperatorRow(op).operation;
    const bool changesRight = op == kOpIncr || op == kOpDecr;
    const bool assigns = op >= kOpAssign;
    ScriptObject* made = nullptr;
    if (operation != nullptr && (left == nullptr || toObject(*left)) && toObject(right) &&
        (!assigns || (own(*left) && own(right))) && (!changesRight || own(right))) {
        made = operation(engine_, block_, left == nullptr ? nullptr : left->object, right.object);
    }
    if (made == nullptr) return fail("scriptEngineEvaluate: Failed to evaluate expression");
    // An empty pointer may have been aimed at the operand: it lives on as long
    // as the statement's other temporaries.
    if (assigns && left->object->type == kTypePointer && right.owned) {
        scriptTemporariesAdd(right.object);
        right.owned = false;
    }
    *result = EvalValue::ofResult(made);
    return true;
}

inline bool Evaluation::unary(uint8_t op, EvalValue& right, EvalValue* result) {
    double number;
    if (isNumber(right, &number)) {
        const bool isOwnVariable = right.object != nullptr && !right.object->isShared();
        if (op == kOpNot) {
            *result = EvalValue::ofNumber(number == 0);
            return true;
        }
        if ((op == kOpIncr || op == kOpDecr) && isOwnVariable) {
            right.object->number += op == kOpIncr ? 1 : -1;
            *result = EvalValue::ofNumber(right.object->number);
            return true;
        }
    }
    return byOperation(op, nullptr, right, result);
}

inline bool Evaluation::binary(const ExprStep& step, EvalValue& left, EvalValue& right,
                               EvalValue* result) {
    double leftNumber;
    double rightNumber;
    if (isNumber(right, &rightNumber)) {
        if (step.op >= kOpAssign) {
            if (assignNumber(step, left, rightNumber, result)) return true;
        } else if (isNumber(left, &leftNumber) &&
                   numbers(step.op, leftNumber, rightNumber, result)) {
            return true;
        }
    }
    if (left.object != nullptr && left.object->type == kTypeString) {
        if (right.object != nullptr && strings(step, left, right, result)) return true;
        if (appendInPlace(step, left, right, result)) return true;
    }
    if (step.op == kOpAssign && step.isLast && want_ == kWantNothing && left.object != nullptr &&
        left.object->type != kTypePointer && toObject(right) && own(left)) {
        if (!scriptObjectAssign(engine_, left.object, right.object))
            return fail("evaluateAssign: Failed to assign") ||
                   fail("scriptEngineEvaluate: Failed to evaluate expression");
        return copyOf(left.object, true, result) ||
               fail("scriptEngineEvaluate: Failed to evaluate expression");
    }
    return byOperation(step.op, &left, right, result);
}

bool Evaluation::run(ScriptExpression* expression, EvalValue* stack, EvalValue* result) {
    EvalValue* top = stack;  // one above the topmost value
    bool good = true;
    for (ExprStep& step : expression->steps) {
        EvalValue left{};
        EvalValue right{};
        EvalValue made{};
        if (step.op == kOpValue) {
            good = push(&step.right, &made);
        } else if (step.op == kStepInvalid) {
            good = fail("scriptEngineEvaluate: Invalid expression");
        } else if (step.op == kStepClone) {
            good = push(&step.right, &left) && (copyOf(left.object, true, &made) ||
                                                fail("scriptEngineEvaluate: Invalid expression"));
        } else if (scriptOperatorRow(step.op).arity > 1) {
            good = (step.leftFrom == kFromStack || push(&step.left, &left)) &&
                   (step.rightFrom == kFromStack || push(&step.right, &right));
            if (step.rightFrom == kFromStack) right = *--top;
            if (step.leftFrom == kFromStack) left = *--top;
            good = good && binary(step, left, right, &made);
            drop(left);
            drop(right);
        } else {
            if (step.rightFrom == kFromStack)
                right = *--top;
            else
                good = push(&step.right, &right);
            good = good && unary(step.op, right, &made);
            drop(right);
        }
        if (!good) break;
        *top++ = made;
    }
    if (good) {
        *result = *--top;
        return true;
    }
    while (top != stack) drop(*--top);
    return false;
}

}  // namespace

bool scriptEngineRunExpression(ScriptEngine* engine, ScriptBlock* block,
                               ScriptExpression* expression, EvalWant want, EvalResult* result) {
    constexpr uint32_t kShortStack = 12;
    if (engine == nullptr || block == nullptr || expression == nullptr) return false;
    EvalValue shortStack[kShortStack];
    EvalValue* stack = shortStack;
    EvalValue* longStack = nullptr;
    if (!scriptExpressionPrepare(expression) ||
        (expression->stackDepth > kShortStack &&
         (stack = longStack = static_cast<EvalValue*>(
              memAlloc(sizeof(EvalValue) * expression->stackDepth))) == nullptr)) {
        logError(engine->logger, "scriptEngineEvaluate: #::100");
        logLocation(engine->logger, kLogError);
        return false;
    }
    EvalValue value{};
    const bool good = Evaluation(engine, block, want).run(expression, stack, &value);
    memFree(&longStack);
    if (!good) return false;
    if (want == kWantTruth) {
        double number;
        result->number = isNumber(value, &number)
                             ? (number == 0 ? kFalse : kTrue)
                             : scriptObjectGetBool(engine, value.object, block);
        drop(value);
    } else if (want == kWantNothing) {
        drop(value);
    } else {
        result->object = value.object;
        result->number = value.number;
    }
    return true;
}

ScriptObject* scriptEngineEvaluate(ScriptEngine* engine, ScriptBlock* block,
                                   ScriptExpression* expression) {
    EvalResult result;
    if (!scriptEngineRunExpression(engine, block, expression, kWantValue, &result)) return nullptr;
    return result.object != nullptr ? result.object : scriptObjectCreateNumber(result.number);
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
