// A growing array of plain data whose memory is overwritten before it is given back: it may hold keys.
#ifndef CFQL_ARRAY_H
#define CFQL_ARRAY_H

#include <stdlib.h>
#include <string.h>

#include <algorithm>
#include <cstddef>
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

    T* data() { return data_; }
    const T* data() const { return data_; }
    std::size_t size() const { return size_; }
    T& operator[](std::size_t index) { return data_[index]; }
    const T& operator[](std::size_t index) const { return data_[index]; }

    // False when memory is short; the array is then as it was. ITEMS must not be part of the array.
    bool append(const T* items, std::size_t count) {
        if (count > capacity_ - size_ && !grow(count)) return false;
        if (count != 0) memcpy(data_ + size_, items, count * sizeof(T));
        size_ += count;
        return true;
    }

    // COUNT items of all zero bits instead of the present ones.
    bool assign_zero(std::size_t count) {
        clear();
        data_ = static_cast<T*>(calloc(count, sizeof(T)));
        if (data_ != nullptr) size_ = capacity_ = count;
        return data_ != nullptr;
    }

    void clear() {
        if (data_ != nullptr) explicit_bzero(data_, size_ * sizeof(T));
        free(data_);
        data_ = nullptr;
        size_ = capacity_ = 0;
    }

    void swap(Array& other) {
        std::swap(data_, other.data_);
        std::swap(size_, other.size_);
        std::swap(capacity_, other.capacity_);
    }

  private:
    // Not realloc(), which would leave a copy behind.
    bool grow(std::size_t count) {
        std::size_t bytes = 0;
        const std::size_t capacity = size_ + std::max({count, size_, std::size_t{64}});
        if (capacity < size_ || __builtin_mul_overflow(capacity, sizeof(T), &bytes)) return false;
        T* const data = static_cast<T*>(malloc(bytes));
        if (data == nullptr) return false;
        const std::size_t size = size_;
        if (size != 0) memcpy(data, data_, size * sizeof(T));
        clear();
        data_ = data;
        size_ = size;
        capacity_ = capacity;
        return true;
    }

    T* data_ = nullptr;
    std::size_t size_ = 0;
    std::size_t capacity_ = 0;
};

}  // namespace cfql

#endif
