// SPDX-License-Identifier: MIT
//
// RelationMatrix: the dimensions in which the interiors, boundaries and exteriors of two geometries
// meet (the nine-intersection of Egenhofer and Herring, dimensionally extended by Clementini),
// while it is being filled.
#ifndef JW_RELATION_RELATION_MATRIX_H
#define JW_RELATION_RELATION_MATRIX_H

#include <algorithm>
#include <cstdint>

namespace jws::detail {

enum Location : std::uint8_t { kInterior, kBoundary, kExterior };

class RelationMatrix {
  public:
    static constexpr std::int8_t kEmpty = -1;

    /// One bit for each entry, by rows.
    static constexpr unsigned bit(int a, int b) { return 1u << (3 * a + b); }

    int at(int a, int b) const { return m_entries[3 * a + b]; }
    void raise(int a, int b, int dimension) {
        std::int8_t& entry = m_entries[3 * a + b];
        entry = std::max(entry, static_cast<std::int8_t>(dimension));
        if (dimension >= 0) m_set |= bit(a, b);
    }
    void raiseAll(const RelationMatrix& o) {
        for (int i = 0; i < 9; ++i) raise(i / 3, i % 3, o.m_entries[i]);
    }
    /// The entries that are not empty.
    unsigned set() const { return m_set; }
    bool has(int a, int b) const { return (m_set & bit(a, b)) != 0; }

    /// The matrix with the operands swapped.
    RelationMatrix transposed() const {
        RelationMatrix t;
        for (int a = 0; a < 3; ++a)
            for (int b = 0; b < 3; ++b) t.raise(b, a, at(a, b));
        return t;
    }

  private:
    std::int8_t m_entries[9] = {kEmpty, kEmpty, kEmpty, kEmpty, kEmpty,
                                kEmpty, kEmpty, kEmpty, kEmpty};
    unsigned m_set = 0;
};

}  // namespace jws::detail

#endif  // JW_RELATION_RELATION_MATRIX_H
