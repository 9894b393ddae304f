#include "text/RecordDiff.h"

#include "text/RecordDiffRecords.h"

int64_t diffRun(const String* left, const String* right, const DiffRules* rules, Vector* out) {
    if (left == nullptr || right == nullptr || rules == nullptr || out == nullptr) return -1;
    DiffSide leftSide;
    DiffSide rightSide;
    if (!diffReadSide(left, rules, true, &leftSide) ||
        !diffReadSide(right, rules, false, &rightSide))
        return -1;
    diffPair(leftSide.sorted.get(), rightSide.sorted.get());
    const uint32_t before = vectorSize(out);
    if (diffReport(leftSide.sorted.get(), rightSide.sorted.get(), rules, out))
        return int64_t{vectorSize(out)} - before - 1;
    vectorEraseWith(out, before, vectorSize(out) - before, stringDestroyElement);
    return -1;
}
