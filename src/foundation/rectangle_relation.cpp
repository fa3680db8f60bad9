// SPDX-License-Identifier: MIT
//
// A segment and a rectangle are convex, so they meet unless an axis separates them: x, y, or the
// normal of the segment. The first two compare coordinates, the third asks on which sides of the
// segment the corners lie, which an exact orientation sign decides. The same holds for the open
// rectangle with the comparisons made strict.
//
// An area that meets the rectangle without its boundary doing so has the rectangle inside; it
// contains the rectangle when its boundary stays out of the open rectangle and the centre is
// inside. A rectangle that is a segment is walked from one crossing with the boundary to the next:
// between two of them it is inside as a whole or outside as a whole.
#include "foundation/rectangle_relation.h"

#include <algorithm>
#include <vector>

#include "foundation/rectangle_segment.h"

namespace jws::detail {
namespace {

bool segmentEnters(const JWRawPoint& a, const JWRawPoint& b, const JWEnvelop& r) {
    if (std::max(a.x, b.x) <= r.minX || std::min(a.x, b.x) >= r.maxX ||
        std::max(a.y, b.y) <= r.minY || std::min(a.y, b.y) >= r.maxY) {
        return false;
    }
    if (a == b) return true;
    const CornerSides sides(a, b, r);
    return sides.left > 0 && sides.right > 0;
}

template <class Test>
bool anySegment(const JWPointSequence& line, const JWEnvelop& r, Test&& test) {
    if (line.getEnvelop().isDisjoin(r)) return false;
    const JWRawPoint* points = line.getPointsPtr();
    const int count = line.getPointCount();
    if (count == 1) return test(points[0], points[0], r);
    for (int i = 0; i + 1 < count; ++i) {
        if (test(points[i], points[i + 1], r)) return true;
    }
    return false;
}

/// The edges that a ray from `p` towards positive x crosses are odd in number. Exact for a point
/// that is not on the ring.
bool isInsideRing(const JWRawPoint& p, const JWRing& ring) {
    if (!ring.getEnvelop().contains(p)) return false;
    const JWRawPoint* points = ring.getPointsPtr();
    bool odd = false;
    for (int i = 0; i + 1 < ring.getPointCount(); ++i) {
        const JWRawPoint &a = points[i], &b = points[i + 1];
        if ((a.y <= p.y) == (b.y <= p.y)) continue;
        if (orientationSign(a, b, p) == (b.y > a.y ? 1 : -1)) odd = !odd;
    }
    return odd;
}

/// In the exterior ring and in none of the holes, for a point that is on no ring.
bool isInside(const JWRawPoint& p, const JWRing* rings, int count) {
    if (count == 0 || !isInsideRing(p, rings[0])) return false;
    for (int i = 1; i < count; ++i) {
        if (isInsideRing(p, rings[i])) return false;
    }
    return true;
}

bool areaMeets(const JWRing* rings, int count, const JWEnvelop& r) {
    for (int i = 0; i < count; ++i) {
        if (anySegment(rings[i], r, segmentMeetsRectangle)) return true;
    }
    return isInside(r.bottom_left(), rings, count);
}

bool onBoundary(const JWRawPoint& p, const JWRing* rings, int count) {
    const JWEnvelop r(p.x, p.y, p.x, p.y);
    for (int i = 0; i < count; ++i) {
        if (anySegment(rings[i], r, segmentMeetsRectangle)) return true;
    }
    return false;
}

/// The rectangle is the segment from its first to its last corner, along x or along y.
bool areaContainsSegment(const JWRing* rings, int count, const JWEnvelop& r) {
    const bool alongX = r.maxX > r.minX;
    const double from = alongX ? r.minX : r.minY, to = alongX ? r.maxX : r.maxY;
    std::vector<double> cuts{from, to};
    const auto addCuts = [&](const JWRawPoint& a, const JWRawPoint& b, const JWEnvelop&) {
        if (!segmentMeetsRectangle(a, b, r)) return false;
        const double a0 = alongX ? a.x : a.y, a1 = alongX ? a.y : a.x;
        const double b0 = alongX ? b.x : b.y, b1 = alongX ? b.y : b.x;
        const double level = alongX ? r.minY : r.minX;
        if (a1 == b1) {
            cuts.push_back(a0);
            cuts.push_back(b0);
        } else {
            cuts.push_back(a0 + (level - a1) / (b1 - a1) * (b0 - a0));
        }
        return false;
    };
    for (int i = 0; i < count; ++i) anySegment(rings[i], r, addCuts);
    for (double& cut : cuts) cut = std::clamp(cut, from, to);
    std::sort(cuts.begin(), cuts.end());
    for (std::size_t i = 0; i + 1 < cuts.size(); ++i) {
        if (cuts[i] == cuts[i + 1]) continue;
        const double middle = 0.5 * cuts[i] + 0.5 * cuts[i + 1];
        const JWRawPoint p = alongX ? JWRawPoint(middle, r.minY) : JWRawPoint(r.minX, middle);
        if (!isInside(p, rings, count) && !onBoundary(p, rings, count)) return false;
    }
    return true;
}

bool areaContains(const JWRing* rings, int count, const JWEnvelop& r) {
    if (count == 0 || !rings[0].getEnvelop().contains(r)) return false;
    if (r.minX == r.maxX && r.minY == r.maxY) return areaMeets(rings, count, r);
    if (r.minX == r.maxX || r.minY == r.maxY) return areaContainsSegment(rings, count, r);
    for (int i = 0; i < count; ++i) {
        if (anySegment(rings[i], r, segmentEnters)) return false;
    }
    return isInside(r.center(), rings, count);
}

template <class Test>
bool anyMember(const JWGeometry& geometry, Test&& test) {
    const auto& members = static_cast<const JWGeometryCollection&>(geometry);
    for (int i = 0; i < members.getGeometryCount(); ++i) {
        if (test(*members.getGeometryPtrAt(i))) return true;
    }
    return false;
}

bool isCollection(enumJWGeometryType type) {
    return type >= JWGeometryMultiPoint && type <= JWGeometryGeometryBag;
}

}  // namespace

bool meetsRectangle(const JWGeometry& geometry, const JWEnvelop& rectangle) {
    if (geometry.isEmpty()) return false;
    const JWEnvelop envelop = geometry.getEnvelop();
    if (!envelop.isValid() || envelop.isDisjoin(rectangle)) return false;
    if (rectangle.contains(envelop)) return true;
    const enumJWGeometryType type = geometry.getGeometryType();
    switch (type) {
        case JWGeometryLineString:
            return anySegment(static_cast<const JWLineString&>(geometry), rectangle,
                              segmentMeetsRectangle);
        case JWGeometryRing:
            return areaMeets(static_cast<const JWRing*>(&geometry), 1, rectangle);
        case JWGeometryPolygon: {
            const auto& rings = static_cast<const JWPolygon&>(geometry).getRingList();
            return areaMeets(rings.data(), static_cast<int>(rings.size()), rectangle);
        }
        case JWGeometryLine: {
            const auto& line = static_cast<const JWLine&>(geometry);
            return segmentMeetsRectangle(line.getFromPoint(), line.getToPoint(), rectangle);
        }
        default:
            return !isCollection(type) || anyMember(geometry, [&](const JWGeometry& member) {
                return meetsRectangle(member, rectangle);
            });
    }
}

bool isWithinRectangle(const JWGeometry& geometry, const JWEnvelop& rectangle) {
    const JWEnvelop envelop = geometry.getEnvelop();
    return !geometry.isEmpty() && envelop.isValid() && rectangle.contains(envelop);
}

bool containsRectangle(const JWGeometry& geometry, const JWEnvelop& rectangle) {
    if (geometry.isEmpty() || !geometry.getEnvelop().contains(rectangle)) return false;
    const enumJWGeometryType type = geometry.getGeometryType();
    switch (type) {
        case JWGeometryRing:
            return areaContains(static_cast<const JWRing*>(&geometry), 1, rectangle);
        case JWGeometryPolygon: {
            const auto& rings = static_cast<const JWPolygon&>(geometry).getRingList();
            return areaContains(rings.data(), static_cast<int>(rings.size()), rectangle);
        }
        default:
            break;
    }
    if (isCollection(type)) {
        return anyMember(geometry, [&](const JWGeometry& member) {
            return containsRectangle(member, rectangle);
        });
    }
    return rectangle.minX == rectangle.maxX && rectangle.minY == rectangle.maxY &&
           meetsRectangle(geometry, rectangle);
}

bool hasRelation(const JWGeometry& geometry, const JWEnvelop& rectangle,
                 enumJWSpatialRelation relation) {
    switch (relation) {
        case JWRelationEqual:
            return isWithinRectangle(geometry, rectangle) && containsRectangle(geometry, rectangle);
        case JWRelationDisjoint:
            return !geometry.isEmpty() && !meetsRectangle(geometry, rectangle);
        case JWRelationContain:
            return containsRectangle(geometry, rectangle);
        case JWRelationWithin:
            return isWithinRectangle(geometry, rectangle);
        case JWRelationNone:
            return false;
        default:
            return meetsRectangle(geometry, rectangle);
    }
}

}  // namespace jws::detail
