// SPDX-License-Identifier: MIT
//
// The crossing number of a point, decided without rounding.
#ifndef JW_FOUNDATION_EXACT_CROSSINGS_H
#define JW_FOUNDATION_EXACT_CROSSINGS_H

#include <algorithm>

#include "foundation/orientation.h"
#include "foundation/ring_math.h"

namespace jws::detail {

/// Counts the edges that a ray towards positive x meets, as CrossingCounter does, but by the exact
/// side of each edge; an edge owns its upper end and not its lower one, so that a vertex counts
/// once.
class ExactCrossings {
  public:
    explicit ExactCrossings(const JWRawPoint& p) : m_p(p) {}

    /// Takes an edge into account; true when the point is on it, which settles the answer.
    bool meetsEdge(const JWRawPoint& a, const JWRawPoint& b) {
        if (std::max(a.x, b.x) < m_p.x) return false;
        if ((a.y <= m_p.y) == (b.y <= m_p.y)) return pointOnSegmentExact(m_p, a, b);
        const int side = a.y < b.y ? sideOf(a, b) : sideOf(b, a);
        m_odd = m_odd != (side > 0);
        return side == 0;
    }

    bool odd() const { return m_odd; }

  private:
    /// Brought near one where products overflow.
    int sideOf(const JWRawPoint& a, const JWRawPoint& b) const {
        const int side = orientationSign(a, b, m_p);
        if (side != 2) return side;
        const auto small = [](const JWRawPoint& p) {
            return JWRawPoint{p.x * 0x1p-600, p.y * 0x1p-600};
        };
        return orientationSign(small(a), small(b), small(m_p));
    }

    JWRawPoint m_p;
    bool m_odd = false;
};

}  // namespace jws::detail

#endif  // JW_FOUNDATION_EXACT_CROSSINGS_H
