// SPDX-License-Identifier: MIT
//
// Reading a geometry into chains and points, and places in it.
//
// A place is found by the edges that a ray from it crosses. Edges through the place itself do not
// count; they leave it as rays, and the parity of any sector between them follows from that of the
// one just above the ray by counting the rays in between.
#include "relation/relate_operand.h"

#include <algorithm>
#include <cmath>

namespace jws::detail {
namespace {

constexpr double kLargest = 0x1p250;
constexpr double kSmallest = 0x1p-215;

/// 0 for directions from straight right to just before straight left, 1 for the others.
int halfOf(const JWRawPoint& center, const JWRawPoint& p) {
    return p.y > center.y || (p.y == center.y && p.x > center.x) ? 0 : 1;
}

/// Orders directions by their angle from straight right, counter-clockwise.
int compareAngles(const JWRawPoint& center, const JWRawPoint& p, const JWRawPoint& q) {
    const int halfP = halfOf(center, p), halfQ = halfOf(center, q);
    if (halfP != halfQ) return halfP < halfQ ? -1 : 1;
    return -orientationSign(center, p, q);
}

bool isStraightRight(const JWRawPoint& center, const JWRawPoint& p) {
    return p.y == center.y && p.x > center.x;
}

void addRays(const JWRawPoint* edge, EdgePlace place, Rays& rays) {
    if (place != EdgePlace::kStart) rays.push_back(edge);
    if (place != EdgePlace::kEnd) rays.push_back(edge + 1);
}

bool isSorted(const std::vector<JWRawPoint>& points, const JWRawPoint& p) {
    return std::binary_search(points.begin(), points.end(), p);
}

}  // namespace

void RelateOperand::Range::add(double v) {
    const double size = std::fabs(v);
    largest = std::max(largest, size);
    if (size != 0 && (smallest == 0 || size < smallest)) smallest = size;
}

void RelateOperand::Range::add(const Range& o) {
    add(o.largest);
    if (o.smallest != 0) add(o.smallest);
}

bool RelateOperand::Range::isPlain() const {
    return largest <= kLargest && (smallest == 0 || smallest >= kSmallest);
}

int RelateOperand::Range::shift() const {
    int exponent = 0;
    std::frexp(largest, &exponent);
    return 250 - exponent;
}

RelateOperand::Status RelateOperand::assign(const JWGeometry& geometry, int shift) {
    m_forest.clear();
    m_points.clear();
    m_boundary.clear();
    m_ownEvents.clear();
    m_chainSides.clear();
    m_box.setInvalid();
    m_range = {};
    m_shift = shift;
    m_hasArea = m_hasLine = m_indexed = false;
    return finish(take(geometry));
}

RelateOperand::Status RelateOperand::finish(Status status) {
    if (status != kUsable) {
        m_forest.clear();
        m_points.clear();
        return status;
    }
    if (isEmpty()) return kEmpty;
    m_box = JWEnvelop(m_extent[0], m_extent[1], m_extent[2], m_extent[3]);
    return kUsable;
}

void RelateOperand::index() {
    if (m_indexed) return;
    m_indexed = true;
    std::sort(m_points.begin(), m_points.end());
    m_points.erase(std::unique(m_points.begin(), m_points.end()), m_points.end());
    if (m_hasLine) findBoundary();
    m_forest.build();
}

RelateOperand::Status RelateOperand::take(const JWGeometry& geometry) {
    if (geometry.isEmpty()) return kUsable;
    switch (geometry.getGeometryType()) {
        case JWGeometryPoint:
            return takePoint(static_cast<const JWPoint&>(geometry).getRawPoint());
        case JWGeometryDynamicPoint:
            return takePoint(static_cast<const JWDynamicPoint&>(geometry).getPosition());
        case JWGeometryLine: {
            const auto& line = static_cast<const JWLine&>(geometry);
            const JWRawPoint ends[] = {line.getFromPoint(), line.getToPoint()};
            return takeChain(ends, 2, false);
        }
        case JWGeometryLineString: {
            const auto& line = static_cast<const JWLineString&>(geometry);
            return takeChain(line.getPointsPtr(), line.getPointCount(), false);
        }
        case JWGeometryRing: {
            const auto& ring = static_cast<const JWRing&>(geometry);
            return takeChain(ring.getPointsPtr(), ring.getPointCount(), true);
        }
        case JWGeometryPolygon: {
            const auto& polygon = static_cast<const JWPolygon&>(geometry);
            Status status = kUsable;
            for (int i = 0; i < polygon.getRingCount() && status == kUsable; ++i)
                status = take(polygon.getRingAt(i));
            return status;
        }
        case JWGeometryMultiPoint:
        case JWGeometryMultiLineString:
        case JWGeometryMultiPolygon:
        case JWGeometryGeometryBag: {
            const auto& members = static_cast<const JWGeometryCollection&>(geometry);
            Status status = kUsable;
            for (int i = 0; i < members.getGeometryCount() && status == kUsable; ++i)
                if (const JWGeometry* member = members.getGeometryPtrAt(i)) status = take(*member);
            return status;
        }
        default:
            return kUnsupported;
    }
}

bool RelateOperand::read(const JWRawPoint& p, JWRawPoint& taken) {
    taken = p;
    m_range.add(p.x);
    m_range.add(p.y);
    if (m_shift != 0) {
        // What is far below the largest is rounded to a multiple of a fixed unit.
        constexpr double kUnit = 1.5 * 0x1p-216;
        taken.x = std::ldexp(p.x, m_shift);
        taken.y = std::ldexp(p.y, m_shift);
        if (std::fabs(taken.x) < 0x1p-217) taken.x = (taken.x + kUnit) - kUnit;
        if (std::fabs(taken.y) < 0x1p-217) taken.y = (taken.y + kUnit) - kUnit;
    }
    taken.x += 0.0;  // −0 and 0 are one place
    taken.y += 0.0;
    if (!(std::isfinite(p.x) && std::isfinite(p.y))) return false;
    if (isEmpty() && m_forest.openPoints() == 0) {
        m_extent[0] = m_extent[2] = taken.x;
        m_extent[1] = m_extent[3] = taken.y;
    }
    m_extent[0] = std::min(m_extent[0], taken.x);
    m_extent[1] = std::min(m_extent[1], taken.y);
    m_extent[2] = std::max(m_extent[2], taken.x);
    m_extent[3] = std::max(m_extent[3], taken.y);
    return true;
}

RelateOperand::Status RelateOperand::takePoint(const JWRawPoint& p) {
    JWRawPoint taken;
    if (!read(p, taken)) return kNotFinite;
    m_points.push_back(taken);
    return kUsable;
}

RelateOperand::Status RelateOperand::takeChain(const JWRawPoint* points, int count, bool area) {
    JWRawPoint first(0, 0), last(0, 0), taken(0, 0);
    for (int i = 0; i < count; ++i) {
        if (!read(points[i], taken)) return kNotFinite;
        if (i == 0) first = taken;
        if (i == 0 || taken != last) m_forest.addPoint(taken);
        last = taken;
    }
    if (m_forest.openPoints() == 0) return kUsable;
    if (area && last != first) m_forest.addPoint(first);
    if (m_forest.openPoints() == 1) {
        m_forest.dropPoints();
        m_points.push_back(first);
        return kUsable;
    }
    m_forest.endChain(area);
    (area ? m_hasArea : m_hasLine) = true;
    return kUsable;
}

void RelateOperand::findBoundary() {
    for (const EdgeChain& chain : m_forest.chains()) {
        if (chain.area || chain.closed) continue;
        m_boundary.push_back(m_forest.points()[chain.first]);
        m_boundary.push_back(m_forest.points()[chain.last]);
    }
    std::sort(m_boundary.begin(), m_boundary.end());
    std::size_t kept = 0;
    for (std::size_t i = 0; i < m_boundary.size();) {
        std::size_t end = i + 1;
        while (end < m_boundary.size() && m_boundary[end] == m_boundary[i]) ++end;
        if ((end - i) % 2 == 1) m_boundary[kept++] = m_boundary[i];
        i = end;
    }
    m_boundary.resize(kept);
}

bool RelateOperand::isBoundaryPoint(const JWRawPoint& p) const { return isSorted(m_boundary, p); }

bool RelateOperand::isPoint(const JWRawPoint& p) const { return isSorted(m_points, p); }

Location RelateOperand::locate(const JWRawPoint& p) const {
    bool onArea = false, onLine = false;
    Rays rays;
    const bool odd = m_box.contains(p) && m_forest.isOddAt(p, [&](const TouchedEdge& touched) {
        onLine |= !touched.area;
        onArea |= touched.area;
        if (touched.area) addRays(m_forest.points() + touched.edge, touched.place, rays);
    });
    if (onArea) return odd && raysPair(p, rays) ? kInterior : kBoundary;
    if (odd) return kInterior;
    if (onLine) return isBoundaryPoint(p) ? kBoundary : kInterior;
    return isPoint(p) ? kInterior : kExterior;
}

bool RelateOperand::isOnEdge(const JWRawPoint& p) const {
    bool isTouched = false;
    if (m_box.contains(p)) m_forest.isOddAt(p, [&](const TouchedEdge&) { isTouched = true; });
    return isTouched;
}

Sides RelateOperand::sidesAt(const JWRawPoint& start, const JWRawPoint& next) const {
    if (!m_hasArea || !m_box.contains(start)) return {};
    Rays rays;
    const bool above = m_forest.isOddAt(start, [&](const TouchedEdge& touched) {
        if (touched.area) addRays(m_forest.points() + touched.edge, touched.place, rays);
    });
    Sides sides{above, above};
    const bool straightRight = isStraightRight(start, next);
    for (const JWRawPoint* ray : rays) {
        const bool counts = !isStraightRight(start, *ray);
        if (straightRight) {
            sides.right ^= counts;
            continue;
        }
        const int order = compareAngles(start, *ray, next);
        sides.left ^= counts && order <= 0;
        sides.right ^= counts && order < 0;
    }
    return sides;
}

void RelateOperand::resolve() {
    if (m_hasArea) {
        const auto meet = [&](std::uint32_t i, std::uint32_t c, std::uint32_t j, std::uint32_t d) {
            meetEdges({m_forest, i, c, &m_ownEvents}, {m_forest, j, d, &m_ownEvents}, true);
            return false;
        };
        m_forest.visitOwnPairs(meet);
    } else {
        for (const JWRawPoint& end : m_boundary) addEndEvents(end);
    }
    sortEvents(m_forest, m_ownEvents);
    m_chainSides.resize(m_forest.chains().size());
    const JWRawPoint* points = m_forest.points();
    for (std::size_t c = 0; c < m_chainSides.size() && m_hasArea; ++c) {
        const std::uint32_t first = m_forest.chains()[c].first;
        m_chainSides[c] = sidesAt(points[first], points[first + 1]);
    }
}

/// An end of a line in the middle of an edge makes that place a boundary.
void RelateOperand::addEndEvents(const JWRawPoint& end) {
    m_forest.isOddAt(end, [&](const TouchedEdge& touched) {
        if (touched.place != EdgePlace::kMiddle) return;
        const JWRawPoint* edge = m_forest.points() + touched.edge;
        EdgeEvent event{};
        event.point = touched.edge;
        event.own = true;
        event.place = EdgePlace::kStart;
        event.cut = vertexCut(edge[0], edge[1], edge, &end);
        m_ownEvents.push_back(event);
    });
}

bool raysPair(const JWRawPoint& center, Rays& rays) {
    if (rays.size() % 2 != 0) return false;
    std::sort(rays.begin(), rays.end(), [&](const JWRawPoint* p, const JWRawPoint* q) {
        return compareAngles(center, *p, *q) < 0;
    });
    // Each group of one direction must be even: then the pairs below are all of one direction.
    for (std::size_t i = 0; i < rays.size(); i += 2)
        if (compareAngles(center, *rays[i], *rays[i + 1]) != 0) return false;
    return true;
}

void sortEvents(const EdgeForest& forest, EdgeEvents& events) {
    const JWRawPoint* points = forest.points();
    std::sort(events.begin(), events.end(), [points](const EdgeEvent& x, const EdgeEvent& y) {
        if (x.point != y.point) return x.point < y.point;
        if (x.atVertex || y.atVertex) return x.atVertex && !y.atVertex;
        return compareCuts(points[x.point], points[x.point + 1], x.cut, y.cut) < 0;
    });
}

bool samePlace(const EdgeForest& forest, const EdgeEvent& x, const EdgeEvent& y) {
    if (x.point != y.point || x.atVertex != y.atVertex) return false;
    const JWRawPoint* p = forest.points() + x.point;
    return x.atVertex || compareCuts(p[0], p[1], x.cut, y.cut) == 0;
}

}  // namespace jws::detail
