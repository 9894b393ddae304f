#pragma once

#include <cstdint>

// The callbacks of the containers, whose elements are untyped pointers.

// Orders two elements: below 0, 0 or above 0; only the sign is used.
using CompareFunction = signed char (*)(const void* left, const void* right);

// Ends the element that the pointer holds and clears the pointer. The
// containers never call it for a null element.
using DestroyFunction = void (*)(void** element);

// Compare what two pointers point at. A null left side is below a right one
// that is there, two nulls are equal, and a left one is above a null.
signed char compareUnsigned(const void* left, const void* right);  // uint32_t
signed char compareSigned(const void* left, const void* right);    // int32_t

// Compares the pointers themselves as unsigned numbers.
signed char comparePointers(const void* left, const void* right);

// A key on the heap with the value given; the caller ends it with `memFree` or
// `keyDestroy`. Null when memory runs out.
uint32_t* keyFromUnsigned(uint32_t value);
double* keyFromDouble(double value);

// Releases such a key, as a destructor callback.
void keyDestroy(void** key);
