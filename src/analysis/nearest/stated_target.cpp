// SPDX-License-Identifier: MIT
#include "analysis/nearest/stated_target.h"

#include "analysis/nearest/geometry_distance.h"

namespace jws::detail {
namespace {

/// Rings and lines with more edges than this get trees.
constexpr std::size_t kManyEdges = 48;

bool hasManyEdges(const JWRing& ring) { return ring.getPointList().size() > kManyEdges; }

bool hasManyEdges(const JWPolygon& polygon) {
    std::size_t count = 0;
    for (const JWRing& ring : polygon.getRingList()) count += ring.getPointList().size();
    return count > kManyEdges;
}

}  // namespace

StatedTarget::StatedTarget(TargetKind kind, const JWGeometry& geometry, const JWEnvelop& box)
    : m_kind(kind), m_box(box), m_bound(box) {
    switch (kind) {
        case TargetKind::Point: {
            const JWRawPoint p = static_cast<const JWPoint&>(geometry).getRawPoint();
            m_pieces.push_back({p, p});
            break;
        }
        case TargetKind::Lines:
            m_pieces = segmentsOf(geometry);
            if (m_pieces.size() > kManyEdges) {
                m_lineTree = std::make_unique<const SegmentTree>(m_pieces);
                m_pieces = {};
            }
            break;
        case TargetKind::Rings:
            everyPolygon(geometry, [&](const JWPolygon& polygon) {
                for (const JWRing& ring : polygon.getRingList())
                    m_rings.emplace_back(ring, hasManyEdges(ring));
            });
            break;
        case TargetKind::Areas:
            everyPolygon(geometry, [&](const JWPolygon& polygon) {
                m_areas.emplace_back(polygon, hasManyEdges(polygon));
            });
            break;
    }
}

FirstLeast StatedTarget::measure(const StatedSource& source, double limit) const {
    return source.isPoint ? fromSourcePoint(source.pieces[0].a, limit)
                          : fromSourceLine(source.pieces, limit);
}

FirstLeast StatedTarget::fromSourcePoint(const JWRawPoint& p, double limit) const {
    FirstLeast least;
    if (m_kind == TargetKind::Point) {
        least.take(betweenPoints(p, m_pieces[0].a));
        return least;
    }
    const auto measure = [&](const Segment& s) { return fromPointToSegment(p, s.a, s.b); };
    for (const Segment& segment : m_pieces) least.take(measure(segment));
    if (m_lineTree)
        least.take(nearestPiece(*m_lineTree, boxOf({p, p}), limit, OfEqual::First, measure));
    for (const RingDistance& ring : m_rings) least.take(ring.fromPoint(p, limit));
    for (const AreaDistance& area : m_areas) least.take(area.fromPoint(p, limit));
    return least;
}

FirstLeast StatedTarget::fromSourceLine(const Segments& segments, double limit) const {
    FirstLeast least;
    if (m_kind == TargetKind::Point) {
        LastLeast last;  // as shortestPointToLineString
        for (const Segment& segment : segments)
            last.take(fromPointToSegment(m_pieces[0].a, segment.a, segment.b));
        least.take(last);
        return least;
    }
    for (const Segment& s : segments) {
        const double most = std::min(limit, least.least());
        if (m_bound(boxOf(s), m_box) > most) continue;
        const auto measure = [&](const Segment& t) {
            return fromSegmentToSegment(s.a, s.b, t.a, t.b);
        };
        for (const Segment& t : m_pieces) least.take(measure(t));
        if (m_lineTree)
            least.take(nearestPiece(*m_lineTree, boxOf(s), most, OfEqual::First, measure));
        for (const RingDistance& ring : m_rings) least.take(ring.fromSegment(s.a, s.b, most));
        for (const AreaDistance& area : m_areas)
            least.take(area.fromSegment(s.a, s.b, most, {0, s.a, s.a}));
    }
    return least;
}

}  // namespace jws::detail
