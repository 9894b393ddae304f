#pragma once

#include "containers/Owned.h"
#include "containers/Vector.h"

// A stack of pointers, which it does not own. Null is tolerated everywhere.
struct PointerStack {
    Vector vector;  // the top is the last element
};

// An empty stack, owned by the caller; null when memory runs out.
PointerStack* pointerStackCreate();

// Releases the stack and clears the caller's pointer; elements are ended from
// the bottom up where a callback is given.
void pointerStackDestroy(PointerStack** stack);
void pointerStackDestroyWith(PointerStack** stack, DestroyFunction destroy);

// Puts a value on top; false for a null value and when memory runs out.
bool pointerStackPush(PointerStack* stack, void* value);

// The value on top, which stays or is taken off; null on an empty stack.
void* pointerStackPeek(const PointerStack* stack);
void* pointerStackPop(PointerStack* stack);

template <>
struct OwnedTraits<PointerStack> {
    static void destroy(PointerStack** stack) { pointerStackDestroy(stack); }
};
