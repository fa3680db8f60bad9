// SPDX-License-Identifier: MIT
//
// Rings and polygons as targets. A prepared ring answers with the help of trees what the plain walk
// over its edges answers: the tests of position are those of RingLocator, and the nearest edge is
// found among those whose rectangles come near enough, the first or last of equal ones by its
// number.
//
// Rings are looked at by their points alone; rectangles are computed here, not taken from storage.
#include "analysis/nearest/area_distance.h"

namespace jws::detail {

RingDistance::RingDistance(const JWRing& ring, bool prepare)
    : m_points(ring.getPointsPtr()),
      m_count(ring.getPointCount()),
      m_envelop(JWEnvelop::invalid()) {
    for (int i = 0; i < m_count; ++i) m_envelop.inflates_to_contain(m_points[i]);
    if (prepare)
        m_prepared = std::make_unique<const Prepared>(
            Prepared{RingLocator(m_points, m_count), SegmentTree(m_points, m_count)});
}

bool RingDistance::isOn(const JWRawPoint& p) const {
    if (!m_envelop.contains(p)) return false;
    if (m_count < 3) return p == m_points[0];
    return m_prepared ? m_prepared->locator.onBoundary(p) : nearAnyEdge(p, m_points, m_count, 0);
}

bool RingDistance::isWithin(const JWRawPoint& p) const {
    if (!m_envelop.contains(p)) return false;
    return m_prepared ? m_prepared->locator.contains(p) : pointInRingCN(p, m_points, m_count) == 1;
}

/// The least `measure(edge)`, of equal ones the last or the first.
template <class Measure>
LastLeast RingDistance::nearestEdge(const JWEnvelop& box, double limit, OfEqual keeps,
                                    const Measure& measure) const {
    if (m_prepared) return nearestPiece(m_prepared->edges, box, limit, keeps, measure);
    NumberedLeast<int> least(keeps);
    for (int i = 0; i + 1 < m_count; ++i)
        least.take(i, measure(Segment{m_points[i], m_points[i + 1]}));
    return least.result();
}

LastLeast RingDistance::fromPoint(const JWRawPoint& p, double limit) const {
    if (isOn(p)) {
        LastLeast zero;
        zero.take(Closest{0, p, p});
        return zero;
    }
    return nearestEdge(boxOf({p, p}), limit, OfEqual::Last,
                       [&](const Segment& edge) { return fromPointToSegment(p, edge.a, edge.b); });
}

LastLeast RingDistance::fromSegment(const JWRawPoint& a, const JWRawPoint& b, double limit) const {
    return nearestEdge(boxOf({a, b}), limit, OfEqual::First, [&](const Segment& edge) {
        return fromSegmentToSegment(a, b, edge.a, edge.b);
    });
}

AreaDistance::AreaDistance(const JWPolygon& polygon, bool prepare) {
    m_rings.reserve(polygon.getRingList().size());
    for (const JWRing& ring : polygon.getRingList()) m_rings.emplace_back(ring, prepare);
}

/// The course of both questions: the holes in order, then the exterior ring. `zero` is the answer
/// for what lies on a ring, or inside and in no hole.
template <class IsOn, class IsInHole, class IsInside, class Measure>
LastLeast AreaDistance::from(const Closest& zero, const IsOn& isOn, const IsInHole& isInHole,
                             const IsInside& isInside, const Measure& measure) const {
    LastLeast least, within;
    within.take(zero);
    if (m_rings.empty()) return least;
    bool isInSomeHole = false;
    for (std::size_t i = 1; i < m_rings.size(); ++i) {
        if (isOn(m_rings[i])) return within;
        if (!isInHole(m_rings[i])) continue;
        least.take(measure(m_rings[i]));
        isInSomeHole = true;
    }
    const RingDistance& exterior = m_rings[0];
    if (isOn(exterior) || (isInside(exterior) && !isInSomeHole)) return within;
    least.take(measure(exterior));
    return least;
}

LastLeast AreaDistance::fromPoint(const JWRawPoint& p, double limit) const {
    const auto isOn = [&](const RingDistance& ring) { return ring.isOn(p); };
    const auto isWithin = [&](const RingDistance& ring) { return ring.isWithin(p); };
    const auto measure = [&](const RingDistance& ring) { return ring.fromPoint(p, limit); };
    return from({0, p, p}, isOn, isWithin, isWithin, measure);
}

LastLeast AreaDistance::fromSegment(const JWRawPoint& a, const JWRawPoint& b, double limit,
                                    const Closest& zero) const {
    const auto isOn = [&](const RingDistance& ring) { return ring.isOn(a) || ring.isOn(b); };
    const auto bothIn = [&](const RingDistance& ring) {
        return ring.isWithin(a) && ring.isWithin(b);
    };
    const auto oneIn = [&](const RingDistance& ring) {
        return ring.isWithin(a) || ring.isWithin(b);
    };
    const auto measure = [&](const RingDistance& ring) { return ring.fromSegment(a, b, limit); };
    return from(zero, isOn, bothIn, oneIn, measure);
}

}  // namespace jws::detail
