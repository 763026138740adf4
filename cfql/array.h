// A growing array of plain data. It may hold keys, so its memory is overwritten before it is released. It has pages of
// its own, which the system moves as it grows, so that there is never a second copy.
#pragma once

#include <string.h>
#include <sys/mman.h>

#include <stddef.h>
#include <algorithm>
#include <type_traits>
#include <utility>

namespace cfql {

template <class T>
class Array {
    static_assert(std::is_trivially_copyable_v<T>);

  public:
    constexpr Array() = default;
    Array(const Array&) = delete;
    Array& operator=(const Array&) = delete;
    ~Array() { clear(); }

    T* begin() { return data_; }
    T* end() { return data_ + size_; }
    const T* begin() const { return data_; }
    const T* end() const { return data_ + size_; }
    size_t size() const { return size_; }
    size_t bytes() const { return size_ * sizeof(T); }
    const T& operator[](size_t index) const { return data_[index]; }

    // False if memory is short; the array is then unchanged.
    bool append(const T* items, size_t count) {
        if (count > capacity_ - size_ && !grow(count)) return false;
        if (count != 0) memcpy(data_ + size_, items, count * sizeof(T));
        size_ += count;
        return true;
    }

    void clear() {
        if (!data_) return;
        explicit_bzero(data_, bytes());
        munmap(data_, capacity_ * sizeof(T));
        data_ = nullptr;
        size_ = capacity_ = 0;
    }

    void swap(Array& other) {
        std::swap(data_, other.data_);
        std::swap(size_, other.size_);
        std::swap(capacity_, other.capacity_);
    }

  private:
    // Pages that have not been written to take no memory.
    bool grow(size_t count) {
        constexpr size_t least = 4096;
        size_t bytes = 0;
        const size_t capacity = size_ + std::max({count, size_ / 4, least});
        if (capacity < size_ || __builtin_mul_overflow(capacity, sizeof(T), &bytes)) return false;
        void* const data = data_ == nullptr
                               ? mmap(nullptr, bytes, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0)
                               : mremap(data_, capacity_ * sizeof(T), bytes, MREMAP_MAYMOVE);
        if (data == MAP_FAILED) return false;
        data_ = static_cast<T*>(data);
        capacity_ = capacity;
        return true;
    }

    T* data_ = nullptr;
    size_t size_ = 0;
    size_t capacity_ = 0;
};

}  // namespace cfql
