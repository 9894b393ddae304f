#pragma once

#include <cstdint>

#include "containers/Compare.h"
#include "containers/Owned.h"

// An array of pointers. It does not own what they point at; the functions
// whose name ends in `With` end the elements with a callback. A null vector is
// tolerated everywhere, and whatever fails leaves the vector as it was.

constexpr uint32_t kVectorCapacity = 13;

struct Vector {
    void** data;     // owned
    uint8_t sorted;  // some sort has happened since the last change of order
    uint32_t size;
    uint32_t capacity;
};

// An empty vector with room for 13 elements, or for `capacity` (0: no array
// yet). The caller owns it; null when memory runs out.
Vector* vectorCreate();
Vector* vectorCreateSized(uint32_t capacity);

// A new vector with the same elements and a capacity of just their number.
Vector* vectorClone(const Vector* source);

// Releases the vector, not its elements, and clears the caller's pointer.
void vectorDestroy(Vector** vector);
void vectorDestroyWith(Vector** vector, DestroyFunction destroy);

// Number of elements; 0 for null.
inline uint32_t vectorSize(const Vector* vector) {
    return vector == nullptr ? 0 : vector->size;
}

// The element at `index`; null at and beyond the size.
inline void* vectorGet(const Vector* vector, uint32_t index) {
    return vector == nullptr || index >= vector->size ? nullptr : vector->data[index];
}

// Replaces the element at `index`, which is not ended; false at and beyond the
// size. The vector no longer counts as sorted.
bool vectorSet(Vector* vector, uint32_t index, void* value);

// Inserts before the element at `index`, or behind the last one; false when the
// index is above the size or memory runs out. A full array doubles. The vector
// no longer counts as sorted.
bool vectorInsert(Vector* vector, uint32_t index, void* value);

// Inserts at the end.
inline bool vectorAppend(Vector* vector, void* value) {
    if (vector == nullptr) return false;
    if (vector->size == vector->capacity) return vectorInsert(vector, vector->size, value);
    vector->data[vector->size++] = value;
    vector->sorted = 0;
    return true;
}

// Takes out up to `count` elements from `index` on; nothing at and beyond the
// size. `sorted` stays.
void vectorErase(Vector* vector, uint32_t index, uint32_t count);
void vectorEraseWith(Vector* vector, uint32_t index, uint32_t count, DestroyFunction destroy);

// Takes out all elements; the array stays, and the vector counts as sorted.
void vectorClear(Vector* vector);
void vectorClearWith(Vector* vector, DestroyFunction destroy);

// Gives the array exactly this capacity; elements beyond it drop out.
bool vectorResize(Vector* vector, uint32_t capacity);

// Makes `vector` hold the elements of `source` and its `sorted` flag. An array
// that is too small is replaced by one of just the size.
bool vectorCopyFrom(Vector* vector, const Vector* source);

// Sorts upward unless the vector counts as sorted already, whatever comparison
// that was for. Up to 37 elements equal ones keep their order; above that they
// may change it. When memory for the second array runs out nothing is sorted.
void vectorSort(Vector* vector, CompareFunction compare);

// Index of an element for which compare(element, key) is 0, or -1: by halves in
// a vector that counts as sorted, by order from index 0 otherwise.
int64_t vectorFind(const Vector* vector, const void* key, CompareFunction compare);

template <>
struct OwnedTraits<Vector> {
    static void destroy(Vector** vector) { vectorDestroy(vector); }
};
