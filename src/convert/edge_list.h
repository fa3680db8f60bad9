// SPDX-License-Identifier: MIT
#ifndef JW_CONVERT_EDGE_LIST_H
#define JW_CONVERT_EDGE_LIST_H

#include <algorithm>
#include <cstddef>
#include <utility>
#include <vector>

#include "convert/boundary_vertices.h"

namespace jws::detail {

/// The different edges of rings, each from its lower vertex to the higher one, in the order of the
/// lower ones.
class EdgeList {
  public:
    explicit EdgeList(const BoundaryVertices& rings) : m_first(rings.points.size() + 1, 0) {
        forEach(rings, [&](int a, int) { ++m_first[at(a) + 1]; });
        for (std::size_t i = 1; i < m_first.size(); ++i) m_first[i] += m_first[i - 1];
        m_to.resize(m_first.back());
        std::vector<std::size_t> next(m_first.begin(), m_first.end() - 1);
        forEach(rings, [&](int a, int b) { m_to[next[at(a)]++] = b; });
        m_end = std::move(next);
        for (std::size_t a = 0; a + 1 < m_first.size(); ++a) {
            const auto from = m_to.begin() + static_cast<std::ptrdiff_t>(m_first[a]);
            const auto to = m_to.begin() + static_cast<std::ptrdiff_t>(m_end[a]);
            std::sort(from, to);
            m_end[a] = static_cast<std::size_t>(std::unique(from, to) - m_to.begin());
        }
    }

    /// Places of the edges from `a` to higher vertices.
    std::size_t begin(int a) const { return m_first[at(a)]; }
    std::size_t end(int a) const { return m_end[at(a)]; }
    int to(std::size_t place) const { return m_to[place]; }
    std::size_t placeCount() const { return m_to.size(); }
    std::size_t placeOf(int a, int b) const {
        const auto from = m_to.begin() + static_cast<std::ptrdiff_t>(begin(a));
        const auto to = m_to.begin() + static_cast<std::ptrdiff_t>(end(a));
        return static_cast<std::size_t>(std::lower_bound(from, to, b) - m_to.begin());
    }

  private:
    static std::size_t at(int n) { return static_cast<std::size_t>(n); }

    template <class Take>
    static void forEach(const BoundaryVertices& rings, const Take& take) {
        for (std::size_t r = 0; r < rings.ringCount(); ++r) {
            const int* end = rings.end(r);
            for (const int* v = rings.begin(r); v != end; ++v) {
                const int next = v + 1 != end ? v[1] : *rings.begin(r);
                take(std::min(*v, next), std::max(*v, next));
            }
        }
    }

    std::vector<std::size_t> m_first;
    std::vector<std::size_t> m_end;
    std::vector<int> m_to;
};

}  // namespace jws::detail

#endif  // JW_CONVERT_EDGE_LIST_H
