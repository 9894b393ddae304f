#include "ScriptEngine3Expressions/TextSteps.h"

#include "ScriptEngine3Expressions/NumberSteps.h"

namespace {

const ScriptObject* operandAt(const ExprOperand& operand, ScriptBlock* block) {
    switch (operand.from) {
        case kFromLocal:
            return block->locals[operand.place.slot];
        case kFromOuter:
            return slotAbove(block, operand.place);
        default:
            // A literal of this very block; anything else takes a longer look.
            return operand.place.kind == kPlaceLiteral && block->ownLiterals == nullptr
                       ? block->shape->literals[operand.place.slot]
                       : nullptr;
    }
}

ScriptObject* stringTarget(const ExprOperand& operand, ScriptBlock* block) {
    ScriptObject* target = nullptr;
    if (operand.from == kFromLocal)
        target = block->locals[operand.place.slot];
    else if (operand.from == kFromOuter)
        target = slotAbove(block, operand.place);
    return target != nullptr && target->type == kTypeString ? target : nullptr;
}

}  // namespace

bool scriptRunAppendStep(const ScriptExpression* expression, ScriptBlock* block) {
    const ExprStep* step = expression->single;
    if (step == nullptr || step->kind != kStepAssign || step->op != kOpConcatAssign) return false;
    ScriptObject* target = stringTarget(step->left, block);
    const ScriptObject* piece = operandAt(step->right, block);
    if (target == nullptr || piece == nullptr || piece == target) return false;
    if (piece->type == kTypeString) return stringAppend(&target->string, &piece->string);
    return piece->type == kTypeNumber && stringAppendDouble(&target->string, piece->number);
}
