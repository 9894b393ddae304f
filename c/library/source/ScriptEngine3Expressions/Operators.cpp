#include "ScriptEngine3Expressions/Operators.h"

#include "ScriptEngine3Expressions/Operations.h"

namespace {

constexpr OperatorRow kRows[] = {
    // token, operation, arity, in, stack. ORDER op-codes
    {"", nullptr, 0, 0, 0},
    {"(", nullptr, 0, 100, 0},
    {")", nullptr, 0, 0, 99},
    {"!", evaluateNot, 1, 50, 51},
    {"++", evaluateIncr, 1, 50, 51},
    {"--", evaluateDecr, 1, 50, 51},
    {"&bool", evaluateBool, 1, 50, 51},
    {"&num", evaluateNum, 1, 50, 51},
    {"&int", evaluateInt, 1, 50, 51},
    {"&fexists", evaluateFExists, 1, 60, 61},
    {"&fsize", evaluateFSize, 1, 60, 61},
    {"&esc", evaluateEsc, 1, 60, 61},
    {"&base", evaluateBase, 1, 60, 61},
    {"&sizeof", evaluateSizeof, 1, 60, 61},
    {"&sqrt", evaluateSqrt, 1, 60, 61},
    {"&max", evaluateMax, 2, 47, 48},
    {"&min", evaluateMin, 2, 47, 48},
    {"&avg", evaluateAvg, 2, 47, 48},
    {"&remove", evaluateRemove, 2, 47, 48},
    {"&of", evaluateOf, 2, 47, 48},
    {"^", evaluatePow, 2, 45, 44},
    {"*", evaluateMult, 2, 40, 41},
    {"/", evaluateDiv, 2, 40, 41},
    {"%", evaluateMod, 2, 40, 41},
    {"+", evaluatePlus, 2, 35, 36},
    {"-", evaluateMinus, 2, 35, 36},
    {".", evaluateConcat, 2, 32, 33},
    {"<", evaluateLt, 2, 30, 31},
    {">", evaluateGt, 2, 30, 31},
    {"<=", evaluateLe, 2, 30, 31},
    {">=", evaluateGe, 2, 30, 31},
    {"{", nullptr, 2, 30, 31},
    {"{*", nullptr, 2, 30, 31},
    {"{#", nullptr, 2, 30, 31},
    {"==", evaluateEq, 2, 25, 26},
    {"!=", evaluateNe, 2, 25, 26},
    {"&match", evaluateStrMatch, 2, 25, 26},
    {"&", evaluateAnd, 2, 20, 21},
    {"|", evaluateOr, 2, 20, 21},
    {"?", evaluateThen, 2, 15, 16},
    {":", evaluateElse, 2, 15, 16},
    {"=", evaluateAssign, 2, 1, 0},
    {".=", evaluateConcatassign, 2, 1, 0},
    {"+=", evaluateAddassign, 2, 1, 0},
    {"-=", evaluateSubassign, 2, 1, 0},
    {"*=", evaluateMultassign, 2, 1, 0},
    {"/=", evaluateDivassign, 2, 1, 0},
    {"%=", evaluateModassign, 2, 1, 0},
    {"^=", evaluatePowassign, 2, 1, 0},
};
static_assert(sizeof kRows / sizeof kRows[0] == kOpCount);

}  // namespace

const OperatorRow& scriptOperatorRow(uint32_t op) {
    return kRows[op];
}

uint32_t scriptOperatorFromToken(std::string_view token) {
    constexpr size_t kLongestToken = 8;
    constexpr std::string_view kFirstBytes = "()!+-&^*/%.<>{=?:|";
    // Most tokens are names and literals, and none of those begins this way.
    if (token.empty() || token.size() > kLongestToken ||
        kFirstBytes.find(token[0]) == std::string_view::npos)
        return 0;
    for (uint32_t op = kOpOpen; op < kOpCount; ++op)
        if (token[0] == kRows[op].token[0] && token == kRows[op].token) return op;
    return 0;
}
