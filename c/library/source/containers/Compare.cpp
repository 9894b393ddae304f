#include "containers/Compare.h"

#include <functional>

#include "containers/Memory.h"

namespace {

template <typename T>
signed char compareNumbers(const void* left, const void* right) {
    if (left == nullptr || right == nullptr)
        return static_cast<signed char>((left != nullptr) - (right != nullptr));
    const T a = *static_cast<const T*>(left);
    const T b = *static_cast<const T*>(right);
    return static_cast<signed char>((a > b) - (a < b));
}

template <typename T>
T* keyFrom(T value) {
    return memNew<T>(value);
}

}  // namespace

signed char compareUnsigned(const void* left, const void* right) {
    return compareNumbers<uint32_t>(left, right);
}

signed char compareSigned(const void* left, const void* right) {
    return compareNumbers<int32_t>(left, right);
}

signed char comparePointers(const void* left, const void* right) {
    const std::less<const void*> below;
    return static_cast<signed char>(below(right, left) - below(left, right));
}

uint32_t* keyFromUnsigned(uint32_t value) {
    return keyFrom(value);
}

double* keyFromDouble(double value) {
    return keyFrom(value);
}

void keyDestroy(void** key) {
    memFreePointer(key);
}
