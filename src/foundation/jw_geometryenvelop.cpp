// SPDX-License-Identifier: MIT
//
// Lines, rings and polygons against a rectangle. A geometry and a rectangle whose envelopes overlap
// meet when a vertex lies in the rectangle, when a segment crosses one of its four edges, or, for
// areas, when a corner of the rectangle lies in the area. Each question is one walk over the
// points; a segment whose own rectangle misses the query cannot cross an edge of it and is passed
// over.
#include <algorithm>
#include <array>
#include <cassert>

#include "foundation/segment_math.h"
#include "jw_geometrywithenvelop.h"

namespace jws {

using namespace detail;

namespace {

/// Corners in the order in which they are tried: up the left side, then clockwise. Edge k runs from
/// corner k to the next: left, top, right, bottom.
std::array<JWRawPoint, 4> cornersOf(const JWEnvelop& e) {
    return {e.bottom_left(), e.top_left(), e.top_right(), e.bottom_right()};
}

bool crossesBorder(const JWRawPoint& a, const JWRawPoint& b,
                   const std::array<JWRawPoint, 4>& corners) {
    if (!segmentBoxesMeet(a, b, corners[0], corners[2])) return false;
    for (size_t k = 0; k < 4; ++k)
        if (JWGeometryWithEnvelop::isSegmentIntersect(a, b, corners[k], corners[(k + 1) % 4]))
            return true;
    return false;
}

bool anySegmentCrosses(const JWPointSequence& curve, const JWEnvelop& envelop) {
    const auto corners = cornersOf(envelop);
    const JWRawPoint* points = curve.getPointsPtr();
    const int n = curve.getPointCount();
    for (int i = 0; i + 1 < n; ++i)
        if (crossesBorder(points[i], points[i + 1], corners)) return true;
    return false;
}

bool anyVertexIn(const JWPointSequence& curve, int vertices, const JWEnvelop& envelop) {
    const JWRawPoint* points = curve.getPointsPtr();
    for (int i = 0; i < vertices; ++i)
        if (envelop.contains(points[i])) return true;
    return false;
}

template <class Collection, class IsDisjoint>
bool everyMemberDisjoint(const Collection* members, const JWEnvelop& envelop,
                         IsDisjoint&& isDisjoint) {
    if (members == nullptr || !members->getEnvelop().intersected(envelop)) return true;
    for (const auto& member : members->getMemberList())
        if (!isDisjoint(member)) return false;
    return true;
}

}  // namespace

JWGeometryWithEnvelop::JWGeometryWithEnvelop() = default;
JWGeometryWithEnvelop& JWGeometryWithEnvelop::operator=(const JWGeometryWithEnvelop&) = default;
JWGeometryWithEnvelop::~JWGeometryWithEnvelop() = default;

bool JWGeometryWithEnvelop::isClockwise(const JWRawPoint& a, const JWRawPoint& b,
                                        const JWRawPoint& c) {
    return turnsClockwise(a, b, c);
}

bool JWGeometryWithEnvelop::isSegmentIntersect(const JWRawPoint& a0, const JWRawPoint& a1,
                                               const JWRawPoint& b0, const JWRawPoint& b1) {
    return segmentBoxesMeet(a0, a1, b0, b1) && segmentsCross(a0, a1, b0, b1);
}

bool JWGeometryWithEnvelop::segmentIntersected(const JWRawPoint& a0, const JWRawPoint& a1,
                                               const JWRawPoint& b0, const JWRawPoint& b1) {
    const JWRawPoint u = difference(a1, a0), v = difference(b1, b0);
    if (cross(u, v) == 0) {
        const JWRawPoint w = difference(a0, b0);
        if (cross(u, w) != 0 || cross(v, w) != 0) return false;
        const double d_uu = dot(u, u), d_vv = dot(v, v);
        assert(d_uu != 0 && d_vv != 0);
        if (d_uu == 0 || d_vv == 0) return segmentBoxesMeet(a0, a1, b0, b1);
    }
    JWRawPoint I0, I1;
    const SegmentRelation code = intersectSegments(a0, a1, b0, b1, I0, I1);
    return code == kOnePoint || code == kOverlap || code == kCollinearTouch;
}

bool JWGeometryWithEnvelop::point_in_ring(const JWRawPoint& p, const JWRing* ring) {
    if (ring == nullptr) return false;
    const JWRawPoint* points = ring->getPointsPtr();
    const int n = ring->getPointCount();
    bool inside = false;
    for (int i = 1; i < n; ++i) {
        const JWRawPoint& a = points[i];
        const JWRawPoint& b = points[i - 1];
        if (((a.y <= p.y && p.y < b.y) || (b.y <= p.y && p.y < a.y)) &&
            p.x < (p.y - a.y) * (b.x - a.x) / (b.y - a.y) + a.x)
            inside = !inside;
    }
    return inside;
}

bool JWGeometryWithEnvelop::point_in_polygon(const JWRawPoint& p, const JWPolygon* polygon) {
    if (polygon == nullptr) return false;
    const JWRing* er = polygon->getExteriorRingPtr();
    assert(er);
    if (er == nullptr || !point_in_ring(p, er)) return false;
    const int count = polygon->getRingCount();
    for (int i = 1; i < count; ++i)
        if (point_in_ring(p, polygon->getRingPtrAt(i))) return false;
    return true;
}

bool JWGeometryWithEnvelop::isLineStringDisjoinWithEnvelop(const JWLineString& line,
                                                           const JWEnvelop& envelop) {
    if (!line.getEnvelop().intersected(envelop)) return true;
    return !anyVertexIn(line, line.getPointCount(), envelop) && !anySegmentCrosses(line, envelop);
}

bool JWGeometryWithEnvelop::isRingDisjoinWithEnvelop(const JWRing& ring, const JWEnvelop& envelop) {
    if (!ring.getEnvelop().intersected(envelop)) return true;
    if (anyVertexIn(ring, ring.getPointCount() - 1, envelop)) return false;
    for (const JWRawPoint& corner : cornersOf(envelop))
        if (point_in_ring(corner, &ring)) return false;
    return !anySegmentCrosses(ring, envelop);
}

bool JWGeometryWithEnvelop::isEnvelopWithinRing(const JWEnvelop& envelop, const JWRing& ring) {
    if (!ring.getEnvelop().intersected(envelop)) return false;
    for (const JWRawPoint& corner : cornersOf(envelop))
        if (!point_in_ring(corner, &ring)) return false;
    return !anySegmentCrosses(ring, envelop);
}

bool JWGeometryWithEnvelop::isPolygonDisjoinWithEnvelop(const JWPolygon* polygon,
                                                        const JWEnvelop& envelop) {
    if (polygon == nullptr || polygon->isEmpty()) return true;
    if (!polygon->getEnvelop().intersected(envelop)) return true;
    if (isRingDisjoinWithEnvelop(polygon->getExteriorRing(), envelop)) return true;
    const int count = polygon->getRingCount();
    for (int i = 1; i < count; ++i)
        if (isEnvelopWithinRing(envelop, polygon->getRingAt(i))) return true;
    return false;
}

bool JWGeometryWithEnvelop::isMultiLineStringDisjoinWithEnvelop(const JWMultiLineString* lines,
                                                                const JWEnvelop& envelop) {
    return everyMemberDisjoint(lines, envelop, [&](const JWLineString& line) {
        return isLineStringDisjoinWithEnvelop(line, envelop);
    });
}

bool JWGeometryWithEnvelop::isMultiPolygonDisjoinWithEnvelop(const JWMultiPolygon* polygons,
                                                             const JWEnvelop& envelop) {
    return everyMemberDisjoint(polygons, envelop, [&](const JWPolygon& polygon) {
        return isPolygonDisjoinWithEnvelop(&polygon, envelop);
    });
}

bool JWGeometryWithEnvelop::isLineStringWithinEnvelop(const JWLineString* line,
                                                      const JWEnvelop& envelop) {
    return line != nullptr && !isLineStringDisjoinWithEnvelop(*line, envelop) &&
           envelop.contains(line->getEnvelop());
}

bool JWGeometryWithEnvelop::isMultiLineStringWithinEnvelop(const JWMultiLineString*,
                                                           const JWEnvelop&) {
    return false;
}

}  // namespace jws
