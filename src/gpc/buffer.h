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
    ~Buffer() { std::free(m_data); }

    T* data() { return m_data; }
    const T* data() const { return m_data; }
    std::size_t size() const { return m_size; }
    bool empty() const { return m_size == 0; }
    T& operator[](std::size_t i) { return m_data[i]; }
    const T& operator[](std::size_t i) const { return m_data[i]; }
    T* begin() { return m_data; }
    T* end() { return m_data + m_size; }
    const T* begin() const { return m_data; }
    const T* end() const { return m_data + m_size; }
    T& back() { return m_data[m_size - 1]; }

    void clear() { m_size = 0; }
    void reserve(std::size_t n) {
        if (n > m_capacity) grow(n);
    }
    /// Sets the size; elements beyond the former size have no defined value.
    void resize(std::size_t n) {
        reserve(n);
        m_size = n;
    }
    /// Sets the size and every byte of every element to `byte`.
    void fill(std::size_t n, unsigned char byte) {
        resize(n);
        if (n > 0) std::memset(static_cast<void*>(m_data), byte, n * sizeof(T));
    }
    void push(const T& value) {
        if (m_size == m_capacity) {
            const T copy = value;
            grow(m_size + 1);
            m_data[m_size++] = copy;
            return;
        }
        m_data[m_size++] = value;
    }
    void pop() { --m_size; }
    void swap(Buffer& other) {
        std::swap(m_data, other.m_data);
        std::swap(m_size, other.m_size);
        std::swap(m_capacity, other.m_capacity);
    }

    std::size_t bytes() const { return m_capacity * sizeof(T); }
    void release() {
        std::free(m_data);
        m_data = nullptr;
        m_size = m_capacity = 0;
    }

  private:
    void grow(std::size_t n) {
        const std::size_t half = m_capacity + m_capacity / 2;
        const std::size_t wanted = n > half ? n : half;
        const std::size_t capacity = wanted < 16 ? 16 : wanted;
        if (capacity > static_cast<std::size_t>(-1) / 2 / sizeof(T)) throw std::bad_alloc();
        T* grown = static_cast<T*>(std::realloc(static_cast<void*>(m_data), capacity * sizeof(T)));
        if (!grown) throw std::bad_alloc();
        adviseLarge(grown, capacity * sizeof(T));
        m_data = grown;
        m_capacity = capacity;
    }

    T* m_data = nullptr;
    std::size_t m_size = 0;
    std::size_t m_capacity = 0;
};

}  // namespace jws::gpc

#endif  // JW_GPC_BUFFER_H
