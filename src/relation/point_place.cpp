// SPDX-License-Identifier: MIT
//
// One walk settles nearly every point. What it cannot settle goes to an operand: a point on a ring
// at which several edges meet, and coordinates so large or so small that products leave the range
// of doubles.
#include "relation/point_place.h"

#include <algorithm>
#include <cmath>

namespace jws::detail {
namespace {

class PointWalk {
  public:
    explicit PointWalk(const JWRawPoint& p) : m_p(p) {}

    void takePoint(const JWRawPoint& a) { m_probe += a.x * 0 + a.y * 0; }

    void takeEdge(const JWRawPoint& a, const JWRawPoint& b) {
        takePoint(b);
        if (a == b) return;
        const double y = m_p.y;
        if ((a.y < y && b.y < y) || (a.y > y && b.y > y) || (a.x < m_p.x && b.x < m_p.x)) return;
        const bool crosses = (a.y > y) != (b.y > y);
        if (a.x > m_p.x && b.x > m_p.x) {
            m_odd ^= crosses;
            return;
        }
        if (m_p == a || m_p == b) {
            const JWRawPoint& end = m_p == a ? b : a;
            m_isTip |= m_touched == 1 && isOneDirection(m_end, end);
            m_end = end;
            ++m_touched;
            return;
        }
        if (!crosses && a.y != b.y) return;
        const int side = orientationSign(a, b, m_p);
        m_unsure |= side == 2 || !isPlain(a) || !isPlain(b) || !isPlain(m_p);
        if (side == 0) {
            m_touched += 2;
        } else {
            m_odd ^= crosses && (side > 0) == (b.y > a.y);
        }
    }

    bool isFinite() const { return m_probe == 0; }
    bool isUnsure() const { return m_unsure; }
    bool odd() const { return m_odd; }
    /// Twice the edges through the point, an edge that ends there once.
    int touched() const { return m_touched; }
    /// The edges of a spike end there.
    bool isTip() const { return m_isTip; }

  private:
    bool isOneDirection(const JWRawPoint& u, const JWRawPoint& v) const {
        return orientationSign(m_p, u, v) == 0 && (u.x > m_p.x) == (v.x > m_p.x) &&
               (u.x < m_p.x) == (v.x < m_p.x) && (u.y > m_p.y) == (v.y > m_p.y) &&
               (u.y < m_p.y) == (v.y < m_p.y);
    }

    JWRawPoint m_p;
    JWRawPoint m_end;  ///< the other end of the last edge that ends in the point
    double m_probe = 0;
    bool m_odd = false;
    bool m_unsure = false;
    bool m_isTip = false;
    int m_touched = 0;
};

void takeEdges(PointWalk& walk, const JWPointSequence& points) {
    const JWRawPoint* p = points.getPointsPtr();
    const int n = points.getPointCount();
    if (n == 0) return;
    walk.takePoint(p[0]);
    for (int i = 0; i + 1 < n; ++i) walk.takeEdge(p[i], p[i + 1]);
}

bool isFinite(const JWRawPoint& p) { return std::isfinite(p.x) && std::isfinite(p.y); }

}  // namespace

PointPlace placeInLine(const JWRawPoint& p, const JWLineString& line) {
    const int n = line.getPointCount();
    if (n == 0 || !isFinite(p)) return {};
    PointWalk walk(p);
    takeEdges(walk, line);
    if (!walk.isFinite()) return {};
    if (walk.isUnsure()) return placeByOperand(p, line);
    const JWRawPoint &first = line.getPointsPtr()[0], &last = line.getPointsPtr()[n - 1];
    if (walk.touched() == 0) return {n == 1 && p == first ? kInterior : kExterior, false};
    return {first != last && (p == first || p == last) ? kBoundary : kInterior, false};
}

PointPlace placeInPolygon(const JWRawPoint& p, const JWPolygon& polygon) {
    if (!isFinite(p)) return {};
    PointWalk walk(p);
    bool onExteriorRing = false, isPointRing = false;
    for (int i = 0; i < polygon.getRingCount(); ++i) {
        const JWRing& ring = polygon.getRingAt(i);
        const int n = ring.getPointCount();
        const int before = walk.touched();
        takeEdges(walk, ring);
        if (n > 0) {
            const JWRawPoint *first = ring.getPointsPtr(), *last = first + n - 1;
            if (n == 1 || *first != *last) walk.takeEdge(*last, *first);
            isPointRing |= walk.touched() == before && p == *first;  // it has no edges
        }
        if (i == 0) onExteriorRing = walk.touched() > 0;
    }
    if (!walk.isFinite()) return {};
    if (walk.isUnsure() || walk.isTip() || walk.touched() > 2)
        return {placeByOperand(p, polygon).location, onExteriorRing};
    if (walk.touched() > 0) return {kBoundary, onExteriorRing};
    return {walk.odd() || isPointRing ? kInterior : kExterior, false};
}

ScaledPoint scaledTo(const RelateOperand::Range& range, const JWRawPoint& p) {
    RelateOperand::Range both = range;
    both.add(p.x);
    both.add(p.y);
    if (!isFinite(p) || both.largest > range.largest) return {};
    if (both.isPlain()) return {true, false, p};
    if (range.isPlain()) return {true, true, p};
    RelateOperand point;
    point.assign(JWPoint(p), range.shift());
    return {true, false, point.points().front()};
}

PointPlace placeByOperand(const JWRawPoint& p, const JWGeometry& geometry) {
    RelateOperand operand;
    if (operand.assign(geometry) != RelateOperand::kUsable) return {};
    RelateOperand::Range range = operand.range();
    range.add(p.x);
    range.add(p.y);
    JWRawPoint scaled = p;
    if (!range.isPlain()) {
        operand.assign(geometry, range.shift());
        RelateOperand point;
        point.assign(JWPoint(p), range.shift());
        scaled = point.points().front();
    }
    operand.index();
    return {operand.locate(scaled), false};
}

PolygonPlaces::PolygonPlaces(const JWPolygon& polygon) : m_polygon(polygon) {
    m_isUsable = m_area.assign(polygon) == RelateOperand::kUsable;
    if (!m_isUsable) return;
    m_range = m_area.range();
    const int shift = m_range.isPlain() ? 0 : m_range.shift();
    if (shift != 0) m_area.assign(polygon, shift);
    m_area.index();
    m_exterior.assign(polygon.getRingAt(0), shift);
    m_exterior.index();
}

PointPlace PolygonPlaces::placeOf(const JWRawPoint& p) const {
    if (!m_isUsable) return {};
    const ScaledPoint scaled = scaledTo(m_range, p);
    if (!scaled.isWithinReach) return {};
    if (scaled.isFine) return placeInPolygon(p, m_polygon);
    const Location location = m_area.locate(scaled.point);
    return {location, location != kExterior && m_exterior.isOnEdge(scaled.point)};
}

bool PolygonPlaces::isAnyOnExteriorRing(const JWPointSequence& vertices) const {
    const JWRawPoint* points = vertices.getPointsPtr();
    return std::any_of(points, points + vertices.getPointCount(),
                       [this](const JWRawPoint& p) { return placeOf(p).onExteriorRing; });
}

}  // namespace jws::detail
