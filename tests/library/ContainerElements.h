#pragma once

#include <cstdint>
#include <vector>

// Elements for the tests of the containers: pointers to the numbers 0 to 63.
struct ContainerElements {
    int32_t values[64];
    ContainerElements() {
        for (int32_t i = 0; i < 64; ++i) values[i] = i;
    }
    int32_t* operator[](int i) { return values + i; }
};
inline ContainerElements numbers;

// The number that an element stands for, -1 for none.
inline int of(const void* element) {
    return element == nullptr ? -1 : *static_cast<const int32_t*>(element);
}

// A destructor callback that notes in which order elements end.
inline std::vector<int> destroyed;
inline void noteDestroy(void** element) {
    destroyed.push_back(of(*element));
    *element = nullptr;
}
