// SPDX-License-Identifier: MIT
#ifndef JW_GPC_BUFFER_H
#define JW_GPC_BUFFER_H

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <new>
#include <type_traits>
#include <utility>
#ifdef __linux__
#include <sys/mman.h>
#endif

namespace jws::gpc {

/// Asks for large pages where `memory` is large: random access to it, and its first use, are
/// several times faster with them. Changes nothing else.
inline void adviseLarge(void* memory, std::size_t bytes) {
#ifdef MADV_HUGEPAGE
    constexpr std::size_t kPage = std::size_t{1} << 21;
    if (bytes < 2 * kPage) return;
    const std::uintptr_t start = reinterpret_cast<std::uintptr_t>(memory);
    const std::uintptr_t first = (start + kPage - 1) / kPage * kPage;
    const std::uintptr_t last = (start + bytes) / kPage * kPage;
    madvise(reinterpret_cast<void*>(first), last - first, MADV_HUGEPAGE);
#else
    (void)memory, (void)bytes;
#endif
}

/// Asks for memory ahead of need.
inline void prefetch(const void* address) {
#ifdef __GNUC__
    __builtin_prefetch(address);
#else
    (void)address;
#endif
}

/// A growing array of plain values that leaves new elements unset and keeps its memory when it is
/// cleared. Throws std::bad_alloc when memory runs out.
template <class T>
class Buffer {
    static_assert(std::is_trivially_copyable_v<T>);

  public:
    Buffer() = default;
    Buffer(const Buffer&) = delete;
    Buffer& operator=(const Buffer&) = delete;
    ~Buffer() { std::free(data_); }

    T* data() { return data_; }
    const T* data() const { return data_; }
    std::size_t size() const { return size_; }
    bool empty() const { return size_ == 0; }
    T& operator[](std::size_t i) { return data_[i]; }
    const T& operator[](std::size_t i) const { return data_[i]; }
    T* begin() { return data_; }
    T* end() { return data_ + size_; }
    const T* begin() const { return data_; }
    const T* end() const { return data_ + size_; }
    T& back() { return data_[size_ - 1]; }

    void clear() { size_ = 0; }
    void reserve(std::size_t n) {
        if (n > capacity_) grow(n);
    }
    /// Sets the size; elements beyond the former size have no defined value.
    void resize(std::size_t n) {
        reserve(n);
        size_ = n;
    }
    /// Sets the size and every byte of every element to `byte`.
    void fill(std::size_t n, unsigned char byte) {
        resize(n);
        if (n > 0) std::memset(static_cast<void*>(data_), byte, n * sizeof(T));
    }
    void push(const T& value) {
        if (size_ == capacity_) {
            const T copy = value;
            grow(size_ + 1);
            data_[size_++] = copy;
            return;
        }
        data_[size_++] = value;
    }
    void pop() { --size_; }
    void swap(Buffer& other) {
        std::swap(data_, other.data_);
        std::swap(size_, other.size_);
        std::swap(capacity_, other.capacity_);
    }

    std::size_t bytes() const { return capacity_ * sizeof(T); }
    void release() {
        std::free(data_);
        data_ = nullptr;
        size_ = capacity_ = 0;
    }

  private:
    void grow(std::size_t n) {
        const std::size_t half = capacity_ + capacity_ / 2;
        const std::size_t wanted = n > half ? n : half;
        const std::size_t capacity = wanted < 16 ? 16 : wanted;
        if (capacity > static_cast<std::size_t>(-1) / 2 / sizeof(T)) throw std::bad_alloc();
        T* grown = static_cast<T*>(std::realloc(static_cast<void*>(data_), capacity * sizeof(T)));
        if (!grown) throw std::bad_alloc();
        adviseLarge(grown, capacity * sizeof(T));
        data_ = grown;
        capacity_ = capacity;
    }

    T* data_ = nullptr;
    std::size_t size_ = 0;
    std::size_t capacity_ = 0;
};

}  // namespace jws::gpc

#endif  // JW_GPC_BUFFER_H
