// SPDX-License-Identifier: MIT
//
// Points near the edges of a ring or line, and RingLocator for many points against one ring: it
// finds the edges beside a point through an EdgeTree and puts them to the rules of the plain walks.
#ifndef JW_FOUNDATION_RING_POSITION_H
#define JW_FOUNDATION_RING_POSITION_H

#include "foundation/edge_tree.h"
#include "foundation/ring_math.h"
#include "foundation/segment_math.h"

namespace jws::detail {

/// `p` is within `tol` of one of the edges of `n` stored points. No envelope is used.
inline bool nearAnyEdge(const JWRawPoint& p, const JWRawPoint* points, int n, double tol) {
    for (int i = 0; i + 1 < n; ++i)
        if (!clearlyFarFromEdge(p, points[i], points[i + 1], tol) &&
            pointNearSegment(p, points[i], points[i + 1], tol))
            return true;
    return false;
}

/// Answers `pointInRingCN` and `nearAnyEdge` at tolerance 0 for many points against one ring, each
/// in about the time that it takes to find the edges beside the point; the answers are the same.
/// Views the points.
class RingLocator {
  public:
    RingLocator(const JWRawPoint* points, int n)
        : m_points(points), m_count(n), m_tree(points, n - 1) {}

    /// Strictly inside by the crossing number.
    bool contains(const JWRawPoint& p) const {
        if (m_count < 4) return false;
        CrossingCounter counter(p);
        const bool met = m_tree.visitRow(
            p.y, [&](int i) { return counter.meetsEdge(m_points[i], m_points[i + 1]); });
        return !met && counter.odd();
    }

    /// The distance to one of the edges is 0.
    bool onBoundary(const JWRawPoint& p) const {
        return m_tree.visitRow(p.y, [&](int i) {
            return !clearlyFarFromEdge(p, m_points[i], m_points[i + 1], 0) &&
                   pointNearSegment(p, m_points[i], m_points[i + 1], 0);
        });
    }

  private:
    const JWRawPoint* m_points;
    int m_count;
    EdgeTree m_tree;
};

}  // namespace jws::detail

#endif  // JW_FOUNDATION_RING_POSITION_H
