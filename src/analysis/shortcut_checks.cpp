// SPDX-License-Identifier: MIT
#include "analysis/shortcut_checks.h"

#include <algorithm>

#include "foundation/orientation.h"

namespace jws::detail {
namespace {

/// p, on the line of ab, lies on the segment.
bool isBetween(const JWRawPoint& p, const JWRawPoint& a, const JWRawPoint& b) {
    return std::min(a.x, b.x) <= p.x && p.x <= std::max(a.x, b.x) && std::min(a.y, b.y) <= p.y &&
           p.y <= std::max(a.y, b.y);
}

/// The segments from `hub` to a and to b have more in common than `hub`.
bool overlapFrom(const JWRawPoint& hub, const JWRawPoint& a, const JWRawPoint& b) {
    return orientationSign(hub, a, b) == 0 && (isBetween(a, hub, b) || isBetween(b, hub, a));
}

}  // namespace

JWEnvelop boxOf(const JWRawPoint* begin, const JWRawPoint* end) {
    JWEnvelop box(begin->x, begin->y, begin->x, begin->y);
    for (const JWRawPoint* p = begin; p != end; ++p) {
        box.minX = std::min(box.minX, p->x);
        box.minY = std::min(box.minY, p->y);
        box.maxX = std::max(box.maxX, p->x);
        box.maxY = std::max(box.maxY, p->y);
    }
    return box;
}

/// Segments a and b have more in common than an end point of both.
bool conflict(const JWRawPoint& a0, const JWRawPoint& a1, const JWRawPoint& b0,
              const JWRawPoint& b1) {
    if (a0 == b0) return a1 == b1 || overlapFrom(a0, a1, b1);
    if (a0 == b1) return a1 == b0 || overlapFrom(a0, a1, b0);
    if (a1 == b0) return overlapFrom(a1, a0, b1);
    if (a1 == b1) return overlapFrom(a1, a0, b0);
    const int s0 = orientationSign(a0, a1, b0), s1 = orientationSign(a0, a1, b1);
    const int t0 = orientationSign(b0, b1, a0), t1 = orientationSign(b0, b1, a1);
    if (s0 * s1 < 0 && t0 * t1 < 0) return true;
    return (s0 == 0 && isBetween(b0, a0, a1)) || (s1 == 0 && isBetween(b1, a0, a1)) ||
           (t0 == 0 && isBetween(a0, b0, b1)) || (t1 == 0 && isBetween(a1, b0, b1));
}

CutOff::CutOff(const JWRawPoint* first, const JWRawPoint* last) : m_ring(first, last + 1) {
    constexpr std::size_t many = 64;
    m_ring.push_back(m_ring.front());
    if (m_ring.size() > many) m_tree.emplace(m_ring.data(), edgeCount());
}

bool CutOff::contains(const JWRawPoint& p) const {
    bool inside = false, on = false;
    const auto pass = [&](int i) {
        const JWRawPoint &a = m_ring[static_cast<std::size_t>(i)],
                         &b = m_ring[static_cast<std::size_t>(i) + 1];
        const int side = orientationSign(a, b, p);
        on = side == 0 && isBetween(p, a, b);
        // A ray to the right meets an edge that p is on the left of, seen upwards.
        if ((a.y > p.y) != (b.y > p.y) && (b.y > a.y) == (side > 0)) inside = !inside;
        return on;
    };
    if (m_tree) {
        m_tree->visitRow(p.y, pass);
    } else {
        for (int i = 0; i < edgeCount() && !on; ++i) pass(i);
    }
    return inside && !on;
}

}  // namespace jws::detail
