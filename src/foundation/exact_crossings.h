// SPDX-License-Identifier: MIT
//
// The crossing number of a point, decided without rounding.
#ifndef JW_FOUNDATION_EXACT_CROSSINGS_H
#define JW_FOUNDATION_EXACT_CROSSINGS_H

#include <algorithm>
#include <cmath>

#include "foundation/orientation.h"

namespace jws::detail {

/// Counts the edges that a ray towards positive x meets, as CrossingCounter does, but by the exact
/// side of each edge; an edge owns its lower end and not its upper one, so that a vertex counts
/// once.
class ExactCrossings {
  public:
    explicit ExactCrossings(const JWRawPoint& p) : m_p(p) {}

    /// Takes an edge into account; true when the point is on it, which settles the answer.
    bool meetsEdge(const JWRawPoint& a, const JWRawPoint& b) {
        if (std::max(a.x, b.x) < m_p.x) return false;
        if ((a.y <= m_p.y) == (b.y <= m_p.y)) {
            return a == m_p || b == m_p ||
                   (a.y == m_p.y && b.y == m_p.y && std::min(a.x, b.x) <= m_p.x);
        }
        const int side = a.y < b.y ? sideOf(a, b) : sideOf(b, a);
        m_odd = m_odd != (side > 0);
        return side == 0;
    }

    bool odd() const { return m_odd; }

  private:
    /// Where products would over- or underflow the points are brought near one.
    int sideOf(const JWRawPoint& a, const JWRawPoint& b) const {
        double reach = 0;
        for (const double v : {a.x, a.y, b.x, b.y, m_p.x, m_p.y}) {
            reach = std::max(reach, std::fabs(v));
        }
        if (reach >= 0x1p-300 && reach <= 0x1p500) return orientationSign(a, b, m_p);
        const double scale = reach > 1 ? 0x1p-600 : 0x1p600;
        const auto near = [scale](const JWRawPoint& p) {
            return JWRawPoint(p.x * scale, p.y * scale);
        };
        return orientationSign(near(a), near(b), near(m_p));
    }

    JWRawPoint m_p;
    bool m_odd = false;
};

}  // namespace jws::detail

#endif  // JW_FOUNDATION_EXACT_CROSSINGS_H
