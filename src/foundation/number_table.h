// SPDX-License-Identifier: MIT
//
// A hash table of numbers that stand for something the caller keeps: a vertex, a line. It holds the
// numbers alone; what they are equal to is asked of the caller. The result of a search never
// depends on the table's order.
#ifndef JW_FOUNDATION_NUMBER_TABLE_H
#define JW_FOUNDATION_NUMBER_TABLE_H

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <vector>

namespace jws::detail {

/// A hash of two 64-bit words.
inline std::uint64_t hashOfWords(std::uint64_t a, std::uint64_t b) {
    std::uint64_t h = a * 0x9E3779B97F4A7C15u;
    h = (h ^ (h >> 29) ^ b) * 0xBF58476D1CE4E5B9u;
    h = (h ^ (h >> 32)) * 0x94D049BB133111EBu;
    return h ^ (h >> 29);
}

/// The same of two coordinates; both zeros are one.
inline std::uint64_t hashOfNumbers(double x, double y) {
    x += 0.0;
    y += 0.0;
    std::uint64_t a, b;
    std::memcpy(&a, &x, sizeof a);
    std::memcpy(&b, &y, sizeof b);
    return hashOfWords(a, b);
}

/// Numbers from 0 on; -1 is none.
class NumberTable {
  public:
    /// Makes room for `most` numbers, the most that will ever be entered.
    explicit NumberTable(std::size_t most) {
        std::size_t size = 16;
        while (size < most + most / 2) size *= 2;
        m_slots.assign(size, -1);
    }

    /// The place of the number for which `isIt(number)` is true, holding -1 when there is none: put
    /// the new number there.
    template <class IsIt>
    int& find(std::uint64_t hash, const IsIt& isIt) {
        const std::size_t mask = m_slots.size() - 1;
        std::size_t i = hash & mask;
        while (m_slots[i] != -1 && !isIt(m_slots[i])) i = (i + 1) & mask;
        return m_slots[i];
    }

  private:
    std::vector<int> m_slots;
};

}  // namespace jws::detail

#endif  // JW_FOUNDATION_NUMBER_TABLE_H
