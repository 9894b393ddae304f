#pragma once

#include "ScriptEngine3Expressions/Operators.h"
#include "strings/StringNumbers.h"

// Every operation that the table of operators names; see `ScriptOperator`.

// Numbers.
ScriptObject* evaluateIncr(ScriptEngine*, ScriptBlock*, ScriptObject*, ScriptObject* right);
ScriptObject* evaluateDecr(ScriptEngine*, ScriptBlock*, ScriptObject*, ScriptObject* right);
ScriptObject* evaluateSqrt(ScriptEngine*, ScriptBlock*, ScriptObject*, ScriptObject* right);
ScriptObject* evaluateMax(ScriptEngine*, ScriptBlock*, ScriptObject* left, ScriptObject* right);
ScriptObject* evaluateMin(ScriptEngine*, ScriptBlock*, ScriptObject* left, ScriptObject* right);
ScriptObject* evaluateAvg(ScriptEngine*, ScriptBlock*, ScriptObject* left, ScriptObject* right);
ScriptObject* evaluatePow(ScriptEngine*, ScriptBlock*, ScriptObject* left, ScriptObject* right);
ScriptObject* evaluateMult(ScriptEngine*, ScriptBlock*, ScriptObject* left, ScriptObject* right);
ScriptObject* evaluateDiv(ScriptEngine*, ScriptBlock*, ScriptObject* left, ScriptObject* right);
ScriptObject* evaluateMod(ScriptEngine*, ScriptBlock*, ScriptObject* left, ScriptObject* right);
ScriptObject* evaluateMinus(ScriptEngine*, ScriptBlock*, ScriptObject* left, ScriptObject* right);

// Conversions and sizes.
ScriptObject* evaluateBool(ScriptEngine*, ScriptBlock*, ScriptObject*, ScriptObject* right);
ScriptObject* evaluateNum(ScriptEngine*, ScriptBlock*, ScriptObject*, ScriptObject* right);
ScriptObject* evaluateInt(ScriptEngine*, ScriptBlock*, ScriptObject*, ScriptObject* right);
ScriptObject* evaluateSizeof(ScriptEngine*, ScriptBlock*, ScriptObject*, ScriptObject* right);

// Files and text.
ScriptObject* evaluateFExists(ScriptEngine*, ScriptBlock*, ScriptObject*, ScriptObject* right);
ScriptObject* evaluateFSize(ScriptEngine*, ScriptBlock*, ScriptObject*, ScriptObject* right);
ScriptObject* evaluateEsc(ScriptEngine*, ScriptBlock*, ScriptObject*, ScriptObject* right);
ScriptObject* evaluateBase(ScriptEngine*, ScriptBlock*, ScriptObject*, ScriptObject* right);
ScriptObject* evaluatePlus(ScriptEngine*, ScriptBlock*, ScriptObject* left, ScriptObject* right);
ScriptObject* evaluateConcat(ScriptEngine*, ScriptBlock*, ScriptObject* left, ScriptObject* right);
ScriptObject* evaluateRemove(ScriptEngine*, ScriptBlock*, ScriptObject* left, ScriptObject* right);
ScriptObject* evaluateStrMatch(ScriptEngine*, ScriptBlock*, ScriptObject* left,
                               ScriptObject* right);
ScriptObject* evaluateOf(ScriptEngine*, ScriptBlock*, ScriptObject* left, ScriptObject* right);

// Truth, order and selection.
ScriptObject* evaluateNot(ScriptEngine*, ScriptBlock*, ScriptObject*, ScriptObject* right);
ScriptObject* evaluateAnd(ScriptEngine*, ScriptBlock*, ScriptObject* left, ScriptObject* right);
ScriptObject* evaluateOr(ScriptEngine*, ScriptBlock*, ScriptObject* left, ScriptObject* right);
ScriptObject* evaluateLt(ScriptEngine*, ScriptBlock*, ScriptObject* left, ScriptObject* right);
ScriptObject* evaluateGt(ScriptEngine*, ScriptBlock*, ScriptObject* left, ScriptObject* right);
ScriptObject* evaluateLe(ScriptEngine*, ScriptBlock*, ScriptObject* left, ScriptObject* right);
ScriptObject* evaluateGe(ScriptEngine*, ScriptBlock*, ScriptObject* left, ScriptObject* right);
ScriptObject* evaluateEq(ScriptEngine*, ScriptBlock*, ScriptObject* left, ScriptObject* right);
ScriptObject* evaluateNe(ScriptEngine*, ScriptBlock*, ScriptObject* left, ScriptObject* right);
ScriptObject* evaluateThen(ScriptEngine*, ScriptBlock*, ScriptObject* left, ScriptObject* right);
ScriptObject* evaluateElse(ScriptEngine*, ScriptBlock*, ScriptObject* left, ScriptObject* right);

// Assignments.
ScriptObject* evaluateAssign(ScriptEngine*, ScriptBlock*, ScriptObject* left, ScriptObject* right);
ScriptObject* evaluateConcatassign(ScriptEngine*, ScriptBlock*, ScriptObject* left,
                                   ScriptObject* right);
ScriptObject* evaluateAddassign(ScriptEngine*, ScriptBlock*, ScriptObject* left,
                                ScriptObject* right);
ScriptObject* evaluateSubassign(ScriptEngine*, ScriptBlock*, ScriptObject* left,
                                ScriptObject* right);
ScriptObject* evaluateMultassign(ScriptEngine*, ScriptBlock*, ScriptObject* left,
                                 ScriptObject* right);
ScriptObject* evaluateDivassign(ScriptEngine*, ScriptBlock*, ScriptObject* left,
                                ScriptObject* right);
ScriptObject* evaluateModassign(ScriptEngine*, ScriptBlock*, ScriptObject* left,
                                ScriptObject* right);
ScriptObject* evaluatePowassign(ScriptEngine*, ScriptBlock*, ScriptObject* left,
                                ScriptObject* right);

// Ends the process by the fault of an integer division, after what was printed
// has been written out.
[[noreturn]] void evaluateDivisionFault();

// The remainder of `left` by `right`, both truncated to signed 32 bits. Where
// the machine's division has no result the process ends by its fault.
inline double evaluateRemainder(double left, double right) {
    const int32_t dividend = numberToInt32(left);
    const int32_t divisor = numberToInt32(right);
    if (divisor == 0 || (divisor == -1 && dividend == INT32_MIN)) evaluateDivisionFault();
    return dividend % divisor;
}
