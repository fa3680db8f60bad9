// SPDX-License-Identifier: MIT
//
// Sets of rings inside the library: a view that borrows the points of rings where they lie, and a
// value that holds its own points in one piece. Both leave the closing point of a ring out. And
// what the lists have in common that a thread keeps between calls.
#ifndef JW_FOUNDATION_RING_SET_H
#define JW_FOUNDATION_RING_SET_H

#include <cmath>
#include <cstddef>
#include <vector>

#include "jw_geometry.h"

namespace jws::detail {

/// Empties a list that a thread keeps between calls. Its memory stays, so that the next call need
/// not allocate, unless a very large call left it.
template <class T>
void emptyKept(std::vector<T>& list) {
    constexpr std::size_t kept = std::size_t{1} << 20;  // bytes
    if (list.capacity() * sizeof(T) > kept) {
        list = std::vector<T>();
    } else {
        list.clear();
    }
}

/// One ring, borrowed: valid as long as the ring's points are.
struct RingView {
    const JWRawPoint* points;
    int count;  ///< without the closing point
    int hole;   ///< 0 outer ring, 1 hole
};

using RingViews = std::vector<RingView>;

/// Twice the signed area, positive counter-clockwise, about the first point. One point at least.
inline double twiceArea(const RingView& ring) {
    const JWRawPoint o = ring.points[0];
    double sum = 0;
    for (int i = 1; i + 1 < ring.count; ++i) {
        const JWRawPoint &a = ring.points[i], &b = ring.points[i + 1];
        sum += (a.x - o.x) * (b.y - o.y) - (b.x - o.x) * (a.y - o.y);
    }
    return sum;
}

/// |area|; 0 for fewer than three points.
inline double areaOf(const RingView& ring) {
    return ring.count < 3 ? 0 : std::fabs(twiceArea(ring)) / 2;
}

inline RingView viewOf(const JWRing& ring, int hole) {
    return {ring.getPointsPtr(), ring.getSegmentCount(), hole};
}

/// Appends the rings of a polygon (ring 0 outer, the others holes).
inline void appendRings(const JWPolygon& polygon, RingViews& views) {
    for (int i = 0; i < polygon.getRingCount(); ++i) {
        views.push_back(viewOf(polygon.getRingAt(i), i == 0 ? 0 : 1));
    }
}

/// Appends the rings of a polygon or multipolygon in order; other geometries have none here.
inline void appendRings(const JWGeometry& geometry, RingViews& views) {
    if (geometry.getGeometryType() == JWGeometryPolygon) {
        appendRings(static_cast<const JWPolygon&>(geometry), views);
    } else if (geometry.getGeometryType() == JWGeometryMultiPolygon) {
        const auto& multi = static_cast<const JWMultiPolygon&>(geometry);
        for (int i = 0; i < multi.getPolygonCount(); ++i) {
            appendRings(*multi.getPolygonPtrAt(i), views);
        }
    }
}

/// The stored envelope of a ring, polygon or multipolygon; where that is not valid, a fresh one.
inline JWEnvelop envelopOf(const JWGeometry& geometry) {
    const JWEnvelop stored = geometry.getEnvelop();
    if (stored.isValid()) return stored;
    RingViews rings;
    if (geometry.getGeometryType() == JWGeometryRing) {
        rings.push_back(viewOf(static_cast<const JWRing&>(geometry), 0));
    } else {
        appendRings(geometry, rings);
    }
    JWEnvelop envelop = JWEnvelop::invalid();
    for (const RingView& ring : rings) {
        for (int i = 0; i < ring.count; ++i) envelop.inflates_to_contain(ring.points[i]);
    }
    return envelop;
}

/// Rings with points of their own, in one array. Views into it hold until the next `addPoint`.
class RingSet {
  public:
    void clear() {
        emptyKept(m_points);
        emptyKept(m_ends);
        emptyKept(m_holes);
    }
    void addPoint(const JWRawPoint& p) { m_points.push_back(p); }
    void addPoints(const JWRawPoint* first, int count) {
        m_points.insert(m_points.end(), first, first + count);
    }
    /// Ends the ring of the points added since the last one.
    void endRing(int hole) {
        m_ends.push_back(m_points.size());
        m_holes.push_back(hole);
    }
    int count() const { return static_cast<int>(m_ends.size()); }
    RingView view(int i) const {
        const std::size_t from = i == 0 ? 0 : m_ends[i - 1];
        return {m_points.data() + from, static_cast<int>(m_ends[i] - from), m_holes[i]};
    }

  private:
    std::vector<JWRawPoint> m_points;
    std::vector<std::size_t> m_ends;
    std::vector<int> m_holes;
};

}  // namespace jws::detail

#endif  // JW_FOUNDATION_RING_SET_H
