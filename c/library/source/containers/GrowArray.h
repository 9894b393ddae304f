#pragma once

#include <cstring>
#include <type_traits>

#include "containers/Memory.h"

// An array of plain values that grows at its end by doubling, in memory of the
// library's allocator. For values that need no destructor; it never throws.
template <typename T>
class GrowArray {
    static_assert(std::is_trivially_copyable_v<T> && std::is_trivially_destructible_v<T>);

  public:
    GrowArray() = default;
    GrowArray(const GrowArray&) = delete;
    GrowArray& operator=(const GrowArray&) = delete;
    ~GrowArray() { memFree(&data_); }

    // Appends a value. False, with nothing changed, when memory runs out.
    bool push(const T& value) {
        if (size_ == capacity_ && !grow(capacity_ == 0 ? 8 : capacity_ * 2)) return false;
        data_[size_++] = value;
        return true;
    }
    // Appends `count` values. False, with nothing changed, when memory runs out.
    bool append(const T* values, size_t count) {
        if (count == 0) return true;
        size_t room = capacity_ == 0 ? 8 : capacity_;
        while (room - size_ < count) room *= 2;
        if (room > capacity_ && !grow(room)) return false;
        std::memcpy(data_ + size_, values, count * sizeof(T));
        size_ += count;
        return true;
    }
    // Takes the last value off; there must be one.
    T pop() { return data_[--size_]; }
    // Makes room for `count` values in all.
    bool reserve(size_t count) { return count <= capacity_ || grow(count); }
    // Gives back the room that is not used, as far as the allocator goes along.
    void fit() {
        if (size_ < capacity_ && size_ != 0) grow(size_);
    }
    // Cuts to `count` values, which must not exceed the size.
    void truncate(size_t count) { size_ = count; }
    void clear() { size_ = 0; }

    T& operator[](size_t index) { return data_[index]; }
    const T& operator[](size_t index) const { return data_[index]; }
    T& back() { return data_[size_ - 1]; }
    const T& back() const { return data_[size_ - 1]; }
    T* data() { return data_; }
    const T* data() const { return data_; }
    size_t size() const { return size_; }
    bool empty() const { return size_ == 0; }
    T* begin() { return data_; }
    T* end() { return data_ + size_; }
    const T* begin() const { return data_; }
    const T* end() const { return data_ + size_; }

  private:
    bool grow(size_t count) {
        void* larger = memResize(data_, count * sizeof(T));
        if (larger == nullptr) return false;
        data_ = static_cast<T*>(larger);
        capacity_ = count;
        return true;
    }

    T* data_ = nullptr;
    size_t size_ = 0;
    size_t capacity_ = 0;
};
