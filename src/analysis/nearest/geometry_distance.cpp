// SPDX-License-Identifier: MIT
#include "analysis/nearest/geometry_distance.h"

#include "foundation/vertex_lists.h"

namespace jws::detail {
namespace {

std::size_t edgeCountOf(const JWPolygon& polygon) {
    std::size_t count = 0;
    for (const JWRing& ring : polygon.getRingList()) count += ring.getPointList().size();
    return count;
}

Segments pointsOf(const JWMultiPoint& points) {
    Segments pieces;
    for (const JWPoint& p : points.getMemberList())
        pieces.push_back({p.getRawPoint(), p.getRawPoint()});
    return pieces;
}

/// Segments, and the points that lines of one point are.
Segments segmentsAndPointsOf(const JWGeometry& lines) {
    Segments pieces;
    everyVertexList(lines, [&](const JWRawPoint* p, std::size_t n) {
        if (n == 1) pieces.push_back({p[0], p[0]});
        appendSegments(p, static_cast<int>(n), pieces);
        return true;
    });
    return pieces;
}

SegmentTree treeOver(const std::vector<JWRawPoint>& line) {
    return SegmentTree(line.data(), static_cast<int>(line.size()));
}

/// Measures from each of `pieces` to each polygon: `measure(area, piece, limit)`.
template <class Measure>
LastLeast toAreas(const Segments& pieces, const JWGeometry& areas, const Measure& measure) {
    LastLeast least;
    everyPolygon(areas, [&](const JWPolygon& polygon) {
        const bool prepare = pieces.size() > 1 && pieces.size() * edgeCountOf(polygon) > kFewPairs;
        const AreaDistance area(polygon, prepare);
        for (const Segment& piece : pieces) least.take(measure(area, piece, least.least()));
    });
    return least;
}

}  // namespace

Segments segmentsOf(const JWGeometry& lines) {
    Segments pieces;
    everyVertexList(lines, [&](const JWRawPoint* p, std::size_t n) {
        appendSegments(p, static_cast<int>(n), pieces);
        return true;
    });
    return pieces;
}

LastLeast pointToLines(const JWRawPoint& p, const JWGeometry& lines) {
    LastLeast least;
    everyVertexList(lines, [&](const JWRawPoint* points, std::size_t n) {
        if (n == 1) least.take(betweenPoints(p, points[0]));
        for (std::size_t i = 0; i + 1 < n; ++i)
            least.take(fromPointToSegment(p, points[i], points[i + 1]));
        return true;
    });
    return least;
}

LastLeast pointToPoints(const JWRawPoint& p, const JWMultiPoint& points) {
    LastLeast least;
    for (const JWPoint& member : points.getMemberList())
        least.take(betweenPoints(p, member.getRawPoint()));
    return least;
}

LastLeast pointToAreas(const JWRawPoint& p, const JWGeometry& areas) {
    return toAreas({{p, p}}, areas,
                   [](const AreaDistance& area, const Segment& point, double limit) {
                       return area.fromPoint(point.a, limit);
                   });
}

LastLeast pointsToPoints(const JWMultiPoint& a, const JWMultiPoint& b) {
    return leastOfPairs(pointsOf(a), pointsOf(b),
                        [](const Segment& p, const Segment& q) { return betweenPoints(p.a, q.a); });
}

LastLeast pointsToLines(const JWMultiPoint& points, const JWGeometry& lines) {
    return leastOfPairs(pointsOf(points), segmentsAndPointsOf(lines),
                        [](const Segment& p, const Segment& segment) {
                            return fromPointToSegment(p.a, segment.a, segment.b);
                        });
}

LastLeast pointsToAreas(const JWMultiPoint& points, const JWGeometry& areas) {
    return toAreas(pointsOf(points), areas,
                   [](const AreaDistance& area, const Segment& point, double limit) {
                       return area.fromPoint(point.a, limit);
                   });
}

LastLeast segmentToLines(const Segment& segment, const JWGeometry& lines) {
    LastLeast least;
    everyVertexList(lines, [&](const JWRawPoint* p, std::size_t n) {
        for (std::size_t i = 0; i + 1 < n; ++i)
            least.take(fromSegmentToSegment(segment.a, segment.b, p[i], p[i + 1]));
        return true;
    });
    return least;
}

LastLeast segmentToRing(const Segment& segment, const JWRing& ring) {
    return RingDistance(ring, false)
        .fromSegment(segment.a, segment.b, std::numeric_limits<double>::max());
}

LastLeast linesToLines(const JWGeometry& a, const JWGeometry& b) {
    const auto measure = [](const Segment& s, const Segment& t) {
        return fromSegmentToSegment(s.a, s.b, t.a, t.b);
    };
    if (a.getGeometryType() == JWGeometryLineString &&
        b.getGeometryType() == JWGeometryLineString) {
        const auto& p = static_cast<const JWLineString&>(a).getPointList();
        const auto& q = static_cast<const JWLineString&>(b).getPointList();
        if (!areFewPairs(p.size(), q.size()))
            return leastOfPairs(treeOver(p), treeOver(q), measure);
    }
    return leastOfPairs(segmentsOf(a), segmentsOf(b), measure);
}

LastLeast segmentsToAreas(const Segments& segments, const JWGeometry& areas) {
    return toAreas(
        segments, areas, [](const AreaDistance& area, const Segment& segment, double limit) {
            return area.fromSegment(segment.a, segment.b, limit, {0, segment.a, segment.a});
        });
}

}  // namespace jws::detail
