#include "containers/Vector.h"

#include <algorithm>
#include <cstring>

#include "containers/Memory.h"

namespace {

// Up to here insertion is faster than merging.
constexpr uint32_t kInsertionSortLimit = 37;

void** makeArray(uint32_t capacity) {
    return static_cast<void**>(memAlloc(size_t{capacity} * sizeof(void*)));
}

void copyPointers(void** target, void* const* source, size_t count) {
    if (count != 0) std::memcpy(target, source, count * sizeof(void*));
}

bool changeCapacity(Vector* vector, uint32_t capacity) {
    void* array = memResize(vector->data, size_t{capacity} * sizeof(void*));
    if (array == nullptr) return false;
    vector->data = static_cast<void**>(array);
    vector->capacity = capacity;
    return true;
}

// What is new is left as it comes: a large array is mostly room that nothing
// touches, and then it takes no memory either.
bool grow(Vector* vector) {
    if (vector->capacity == UINT32_MAX) return false;
    const uint64_t doubled =
        vector->capacity == 0 ? kVectorCapacity : uint64_t{vector->capacity} * 2;
    return changeCapacity(vector, static_cast<uint32_t>(std::min<uint64_t>(doubled, UINT32_MAX)));
}

void destroyRange(void** from, void** to, DestroyFunction destroy) {
    if (destroy == nullptr) return;
    for (; from != to; ++from)
        if (*from != nullptr) destroy(from);
}

void sortByInsertion(void** data, uint32_t size, CompareFunction compare) {
    for (uint32_t i = 1; i < size; ++i) {
        void* moved = data[i];
        uint32_t place = i;
        for (; place > 0 && compare(moved, data[place - 1]) < 0; --place)
            data[place] = data[place - 1];
        data[place] = moved;
    }
}

// Merges [left, middle) and [middle, end). The left element goes first only
// when it is strictly below the right one, so ties turn round.
void merge(void** left, void** middle, void** end, void** target, CompareFunction compare) {
    void** right = middle;
    while (left != middle && right != end)
        *target++ = compare(*left, *right) < 0 ? *left++ : *right++;
    copyPointers(target, left, static_cast<size_t>(middle - left));
    copyPointers(target + (middle - left), right, static_cast<size_t>(end - right));
}

// Bottom-up merge sort between the vector's array and `other`; gives the array
// that holds the result.
void** sortByMerging(void** data, void** other, uint32_t size, CompareFunction compare) {
    for (uint64_t width = 2; width < uint64_t{size} * 2; width *= 2) {
        for (uint64_t start = 0; start < size; start += width) {
            const uint64_t middle = std::min<uint64_t>(start + width / 2, size);
            const uint64_t end = std::min<uint64_t>(start + width, size);
            merge(data + start, data + middle, data + end, other + start, compare);
        }
        std::swap(data, other);
    }
    return data;
}

}  // namespace

Vector* vectorCreate() {
    return vectorCreateSized(kVectorCapacity);
}

Vector* vectorCreateSized(uint32_t capacity) {
    Owned<Vector> vector(memNew<Vector>());
    if (!vector) return nullptr;
    vector->sorted = 1;
    return vectorResize(vector.get(), capacity) ? vector.release() : nullptr;
}

Vector* vectorClone(const Vector* source) {
    if (source == nullptr) return nullptr;
    Owned<Vector> copy(vectorCreateSized(source->size));
    return vectorCopyFrom(copy.get(), source) ? copy.release() : nullptr;
}

void vectorDestroy(Vector** vector) {
    if (vector == nullptr || *vector == nullptr) return;
    memFree(&(*vector)->data);
    memFree(vector);
}

void vectorDestroyWith(Vector** vector, DestroyFunction destroy) {
    if (vector == nullptr) return;
    vectorClearWith(*vector, destroy);
    vectorDestroy(vector);
}

bool vectorSet(Vector* vector, uint32_t index, void* value) {
    if (vector == nullptr || index >= vector->size) return false;
    vector->data[index] = value;
    vector->sorted = 0;
    return true;
}

bool vectorInsert(Vector* vector, uint32_t index, void* value) {
    if (vector == nullptr || index > vector->size) return false;
    if (vector->size == vector->capacity && !grow(vector)) return false;
    void** place = vector->data + index;
    std::memmove(place + 1, place, (vector->size - index) * sizeof(void*));
    *place = value;
    ++vector->size;
    vector->sorted = 0;
    return true;
}

void vectorErase(Vector* vector, uint32_t index, uint32_t count) {
    vectorEraseWith(vector, index, count, nullptr);
}

void vectorEraseWith(Vector* vector, uint32_t index, uint32_t count, DestroyFunction destroy) {
    if (vector == nullptr || index >= vector->size) return;
    count = std::min(count, vector->size - index);
    void** place = vector->data + index;
    destroyRange(place, place + count, destroy);
    std::memmove(place, place + count, (vector->size - index - count) * sizeof(void*));
    vector->size -= count;
}

void vectorClear(Vector* vector) {
    vectorClearWith(vector, nullptr);
}

void vectorClearWith(Vector* vector, DestroyFunction destroy) {
    if (vector == nullptr) return;
    destroyRange(vector->data, vector->data + vector->size, destroy);
    vector->size = 0;
    vector->sorted = 1;
}

bool vectorResize(Vector* vector, uint32_t capacity) {
    if (vector == nullptr) return false;
    const uint32_t before = vector->capacity;
    if (capacity == 0) {
        memFree(&vector->data);
        vector->capacity = 0;
    } else if (capacity != before && !changeCapacity(vector, capacity)) {
        return false;
    }
    vector->size = std::min(vector->size, capacity);
    // Whoever looks behind the size finds nulls, as in a new vector.
    if (capacity > before)
        std::memset(vector->data + before, 0, (capacity - before) * sizeof(void*));
    return true;
}

bool vectorCopyFrom(Vector* vector, const Vector* source) {
    if (vector == nullptr || source == nullptr) return false;
    if (vector == source) return true;
    if (vector->capacity < source->size) {
        void** array = makeArray(source->size);
        if (array == nullptr) return false;
        memFree(&vector->data);
        vector->data = array;
        vector->capacity = source->size;
    }
    copyPointers(vector->data, source->data, source->size);
    vector->size = source->size;
    vector->sorted = source->sorted;
    return true;
}

void vectorSort(Vector* vector, CompareFunction compare) {
    if (vector == nullptr || compare == nullptr || vector->sorted != 0) return;
    if (vector->size <= kInsertionSortLimit) {
        sortByInsertion(vector->data, vector->size, compare);
    } else {
        void** other = makeArray(vector->size);
        if (other == nullptr) return;
        void** result = sortByMerging(vector->data, other, vector->size, compare);
        if (result == other) copyPointers(vector->data, other, vector->size);
        memFree(&other);
    }
    vector->sorted = 1;
}

int64_t vectorFind(const Vector* vector, const void* key, CompareFunction compare) {
    if (vector == nullptr || compare == nullptr) return -1;
    if (vector->sorted == 0) {
        for (uint32_t i = 0; i < vector->size; ++i)
            if (compare(vector->data[i], key) == 0) return i;
        return -1;
    }
    uint32_t low = 0;
    uint32_t high = vector->size;
    while (low < high) {
        const uint32_t middle = low + (high - low) / 2;
        const signed char order = compare(vector->data[middle], key);
        if (order == 0) return middle;
        if (order > 0)
            high = middle;
        else
            low = middle + 1;
    }
    return -1;
}
