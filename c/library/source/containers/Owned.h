#pragma once

#include <utility>

// Owns one record of the library and ends it with its own destroy function,
// which takes the address of the pointer and clears it. A module names the
// function once: `template <> struct OwnedTraits<String> { static void
// destroy(String** s) { stringDestroy(s); } };`
template <typename T>
struct OwnedTraits;

template <typename T>
class Owned {
  public:
    Owned() = default;
    explicit Owned(T* record) : record_(record) {}
    Owned(Owned&& other) noexcept : record_(other.release()) {}
    Owned& operator=(Owned&& other) noexcept {
        if (this != &other) reset(other.release());
        return *this;
    }
    Owned(const Owned&) = delete;
    Owned& operator=(const Owned&) = delete;
    ~Owned() { reset(); }

    T* get() const { return record_; }
    T* operator->() const { return record_; }
    T& operator*() const { return *record_; }
    explicit operator bool() const { return record_ != nullptr; }

    // Hands the record to the caller, who owns it from now on.
    T* release() { return std::exchange(record_, nullptr); }

    // Ends the record held and takes over another, or none.
    void reset(T* record = nullptr) {
        T* old = std::exchange(record_, record);
        if (old != nullptr) OwnedTraits<T>::destroy(&old);
    }

    // For functions that hand out a record through a pointer of the caller's.
    T** receive() {
        reset();
        return &record_;
    }

  private:
    T* record_ = nullptr;
};
