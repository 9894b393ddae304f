#include "containers/PointerStack.h"

#include "containers/Memory.h"

PointerStack* pointerStackCreate() {
    Owned<PointerStack> stack(memNew<PointerStack>());
    if (!stack || !vectorResize(&stack->vector, kVectorCapacity)) return nullptr;
    stack->vector.sorted = 1;
    return stack.release();
}

void pointerStackDestroy(PointerStack** stack) {
    pointerStackDestroyWith(stack, nullptr);
}

void pointerStackDestroyWith(PointerStack** stack, DestroyFunction destroy) {
    if (stack == nullptr || *stack == nullptr) return;
    vectorClearWith(&(*stack)->vector, destroy);
    memFree(&(*stack)->vector.data);
    memFree(stack);
}

bool pointerStackPush(PointerStack* stack, void* value) {
    return stack != nullptr && value != nullptr && vectorAppend(&stack->vector, value);
}

void* pointerStackPeek(const PointerStack* stack) {
    if (stack == nullptr || stack->vector.size == 0) return nullptr;
    return stack->vector.data[stack->vector.size - 1];
}

void* pointerStackPop(PointerStack* stack) {
    void* top = pointerStackPeek(stack);
    if (top != nullptr) --stack->vector.size;
    return top;
}
