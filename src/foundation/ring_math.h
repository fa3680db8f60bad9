// SPDX-License-Identifier: MIT
//
// Arithmetic of closed point arrays: area, centroid, point in ring, point on boundary. The one body
// behind the ring class and the primitives, which differ only in their checks and envelope tests.
//
// An array of n points has the n − 1 edges between neighbours; nothing here adds a closing edge
// unless it says so.
#ifndef JW_FOUNDATION_RING_MATH_H
#define JW_FOUNDATION_RING_MATH_H

#include <cmath>

#include "foundation/orientation.h"
#include "jw_envelop.h"

namespace jws {

/// Signed area by the shoelace sum over the stored edges, positive for counter-clockwise rings, in
/// the coordinates as they are: the digits of a ring far from the origin cancel. 0 below 4 points.
inline double ringArea(const JWRawPoint* p, int n) {
    if (n < 4) return 0.0;
    double sum = 0.0;
    for (int i = 0; i + 1 < n; ++i) sum += p[i].x * p[i + 1].y - p[i + 1].x * p[i].y;
    return 0.5 * sum;
}

/// The same area computed relative to point 0: digits do not depend on where the ring lies, and an
/// open array counts as closed by a straight edge. 0 below 4 points.
inline double ringAreaLocal(const JWRawPoint* p, int n) {
    if (n < 4) return 0.0;
    const JWRawPoint o = p[0];
    double sum = 0.0;
    double x0 = 0.0, y0 = 0.0;
    for (int i = 1; i < n; ++i) {
        const double x1 = p[i].x - o.x, y1 = p[i].y - o.y;
        sum += x0 * y1 - x1 * y0;
        x0 = x1;
        y0 = y1;
    }
    return 0.5 * sum;
}

/// Area centroid relative to point 0. False, and c as it was, below 4 points and when the area is
/// zero or not finite.
inline bool ringCentroid(const JWRawPoint* p, int n, JWRawPoint& c) {
    if (n < 4) return false;
    const JWRawPoint o = p[0];
    double twice = 0.0, cx = 0.0, cy = 0.0;
    double x0 = 0.0, y0 = 0.0;
    for (int i = 1; i < n; ++i) {
        const double x1 = p[i].x - o.x, y1 = p[i].y - o.y;
        const double k = x0 * y1 - x1 * y0;
        twice += k;
        cx += (x0 + x1) * k;
        cy += (y0 + y1) * k;
        x0 = x1;
        y0 = y1;
    }
    if (twice == 0.0 || !std::isfinite(twice)) return false;
    c.set(o.x + cx / (3.0 * twice), o.y + cy / (3.0 * twice));
    return true;
}

namespace detail {

/// The crossing number of one point, edge by edge: the edges that a ray towards positive x meets.
/// An edge owns its lower end and not its upper one, so that a vertex counts once. The crossing
/// formula alone misses vertices by a rounding, so they are compared; other boundary points count
/// as the rounded formula finds them. A NaN meets nothing.
class CrossingCounter {
  public:
    explicit CrossingCounter(const JWRawPoint& p) : m_p(p) {}

    /// Takes an edge into account; true when the point is on it, which settles the answer.
    bool meetsEdge(const JWRawPoint& e0, const JWRawPoint& e1) {
        const double y = m_p.y;
        if ((e0.y > y && e1.y > y) || (e0.y < y && e1.y < y)) return false;
        if (e0 == m_p || e1 == m_p) return true;
        if (e0.y == e1.y)
            return (e0.x <= m_p.x && m_p.x <= e1.x) || (e1.x <= m_p.x && m_p.x <= e0.x);
        if ((e0.y <= y && y < e1.y) || (e1.y <= y && y < e0.y)) {
            const double x = e0.x + (y - e0.y) / (e1.y - e0.y) * (e1.x - e0.x);
            if (m_p.x == x) return true;
            if (m_p.x < x) m_odd = !m_odd;
        }
        return false;
    }

    bool odd() const { return m_odd; }

  private:
    JWRawPoint m_p;
    bool m_odd = false;
};

}  // namespace detail

/// Crossing number without an envelope test: 1 strictly inside; 0 outside, on the boundary, for a
/// vertex, for a NaN, and below 4 points.
inline int pointInRingCN(const JWRawPoint& p, const JWRawPoint* pts, int n) {
    if (n < 4) return 0;
    detail::CrossingCounter counter(p);
    for (int i = 0; i + 1 < n; ++i) {
        if (counter.meetsEdge(pts[i], pts[i + 1])) return 0;
    }
    return counter.odd() ? 1 : 0;
}

/// True when p lies exactly on the segment from a to b, ends included, decided without rounding.
inline bool pointOnSegmentExact(const JWRawPoint& p, const JWRawPoint& a, const JWRawPoint& b) {
    const bool inBox = (a.x < b.x ? a.x <= p.x && p.x <= b.x : b.x <= p.x && p.x <= a.x) &&
                       (a.y < b.y ? a.y <= p.y && p.y <= b.y : b.y <= p.y && p.y <= a.y);
    return inBox && orientationSign(a, b, p) == 0;
}

/// True when p lies exactly on one of the stored edges; false below 2 points.
inline bool pointOnEdges(const JWRawPoint& p, const JWRawPoint* pts, int n) {
    for (int i = 0; i + 1 < n; ++i) {
        if (pointOnSegmentExact(p, pts[i], pts[i + 1])) return true;
    }
    return false;
}

}  // namespace jws

#endif  // JW_FOUNDATION_RING_MATH_H
