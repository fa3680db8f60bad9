// SPDX-License-Identifier: MIT
//
// Codes and names over the relation of two geometries. Single points are placed by one walk; all
// else goes through the operands of relate.h.
#include "jw_spatialrelation.h"

#include <algorithm>
#include <cmath>
#include <optional>
#include <vector>

#include "foundation/api_guard.h"
#include "foundation/rectangle_segment.h"
#include "foundation/vertex_lists.h"
#include "relation/point_place.h"
#include "relation/predicates.h"

namespace jws {

using namespace detail;

namespace {

/// `body()` for operands that are there; false otherwise.
template <class A, class B, class Body>
bool whenGiven(const char* function, const A* a, const B* b, Body&& body) {
    return a != nullptr && b != nullptr && guarded(function, false, body);
}

bool meet(const char* function, const JWGeometry* a, const JWGeometry* b) {
    return whenGiven(function, a, b, [&] { return intersects(*a, *b); });
}

bool apart(const char* function, const JWGeometry* a, const JWGeometry* b) {
    return whenGiven(function, a, b, [&] { return !intersects(*a, *b); });
}

bool related(const char* function, Predicate predicate, const JWGeometry* a, const JWGeometry* b) {
    return whenGiven(function, a, b, [&] { return holds(predicate, *a, *b); });
}

bool isFinite(const JWPoint& p) { return std::isfinite(p.getX()) && std::isfinite(p.getY()); }

PointPlace placeOf(const JWPoint& p, const JWLineString& line) {
    return placeInLine(p.getRawPoint(), line);
}

PointPlace placeOf(const JWPoint& p, const JWPolygon& polygon) {
    return placeInPolygon(p.getRawPoint(), polygon);
}

/// How the points of a multi-point lie to a polygon. Points that are empty do not count.
struct PlacesInPolygon {
    int inside = 0;
    int outside = 0;  ///< outside or on the exterior ring
    int onRings = 0;
};

/// From this many points on a polygon gets an index.
constexpr int kFewPoints = 4;

PlacesInPolygon placesOf(const JWMultiPoint& points, const JWPolygon& polygon) {
    PlacesInPolygon places;
    if (!detail::isFinite(points)) return places;
    std::optional<PolygonPlaces> prepared;
    if (points.getGeometryCount() >= kFewPoints && !polygon.isEmpty()) prepared.emplace(polygon);
    for (const JWPoint& p : points.getMemberList()) {
        if (p.isEmpty()) continue;
        const PointPlace place =
            prepared ? prepared->placeOf(p.getRawPoint()) : placeOf(p, polygon);
        places.inside += place.location == kInterior && !place.onExteriorRing;
        places.outside += place.location == kExterior || place.onExteriorRing;
        places.onRings += place.location == kBoundary;
    }
    return places;
}

enumJWSpatialRelation meetOrNot(bool meets) {
    return meets ? JWRelationOverlap : JWRelationDisjoint;
}

/// Kinds that `getObjectsSR` compares.
bool isCompared(enumJWGeometryType type) {
    return type >= JWGeometryPoint && type <= JWGeometryMultiPolygon;
}

/// A ring as a polygon; any other geometry as it is.
const JWGeometry* asCompared(const JWGeometry* geometry, JWPolygon& polygon) {
    if (geometry->getGeometryType() != JWGeometryRing) return geometry;
    polygon = JWPolygon(static_cast<const JWRing&>(*geometry));
    return &polygon;
}

template <class Geometry>
const Geometry* as(const JWGeometry* geometry) {
    return static_cast<const Geometry*>(geometry);
}

}  // namespace

JWSpatialRelation::~JWSpatialRelation() = default;

enumJWSpatialRelation JWSpatialRelation::getEnvelopAndEnvelop(const JWEnvelop* a,
                                                              const JWEnvelop* b) const {
    if (a == nullptr || b == nullptr) return JWRelationNone;
    if (isEnvelopsEqual(a, b)) return JWRelationEqual;
    if (isEnvelopsDisjoint(a, b)) return JWRelationDisjoint;
    if (a->contains(*b)) return JWRelationContain;
    if (b->contains(*a)) return JWRelationWithin;
    return JWRelationOverlap;
}

enumJWSpatialRelation JWSpatialRelation::getRawPointAndEnvelopSR(const JWRawPoint* p,
                                                                 const JWEnvelop* e) const {
    if (p == nullptr || e == nullptr) return JWRelationNone;
    return e->contains(*p) ? JWRelationWithin : JWRelationDisjoint;
}

enumJWSpatialRelation JWSpatialRelation::getPointAndEnvelopSR(const JWPoint* p,
                                                              const JWEnvelop* e) const {
    if (p == nullptr) return JWRelationNone;
    const JWRawPoint raw = p->getRawPoint();
    return getRawPointAndEnvelopSR(&raw, e);
}

enumJWSpatialRelation JWSpatialRelation::getSegmentAndEnvelopSR(const JWLine* line,
                                                                const JWEnvelop* e) const {
    if (line == nullptr || e == nullptr) return JWRelationNone;
    const JWRawPoint &a = line->getFromPoint(), &b = line->getToPoint();
    if (e->contains(a) && e->contains(b)) return JWRelationWithin;
    return meetOrNot(segmentMeetsRectangle(a, b, *e));
}

enumJWSpatialRelation JWSpatialRelation::getPointAndPointSR(const JWPoint* a,
                                                            const JWPoint* b) const {
    if (a == nullptr || b == nullptr) return JWRelationNone;
    return *a == *b ? JWRelationEqual : JWRelationDisjoint;
}

enumJWSpatialRelation JWSpatialRelation::getObjectsSR(const JWGeometry* a,
                                                      const JWGeometry* b) const {
    if (a == nullptr || b == nullptr) return JWRelationNone;
    return guarded("getObjectsSR", JWRelationNone, [&] {
        JWPolygon ringA, ringB;
        a = asCompared(a, ringA);
        b = asCompared(b, ringB);
        enumJWGeometryType typeA = a->getGeometryType(), typeB = b->getGeometryType();
        if (!isCompared(typeA) || !isCompared(typeB)) return JWRelationNone;
        if (typeB < typeA) {
            std::swap(a, b);
            std::swap(typeA, typeB);
        }
        if (typeA == JWGeometryPoint && typeB == JWGeometryPolygon)
            return meetOrNot(!isPointPolygonDisjoint(as<JWPoint>(a), as<JWPolygon>(b)));
        // Inverted on purpose.
        if (typeA == JWGeometryLineString && typeB == JWGeometryMultiPoint)
            return meetOrNot(
                !isMultiPointLinestringIntersect(as<JWMultiPoint>(b), as<JWLineString>(a)));
        return meetOrNot(partsIntersect(*a, *b));
    });
}

bool JWSpatialRelation::isEnvelopsEqual(const JWEnvelop* a, const JWEnvelop* b) const {
    if (a == nullptr || b == nullptr) return false;
    if (!isUseTolerance()) return *a == *b;
    return a->minX - b->minX < tolerance && a->minY - b->minY < tolerance &&
           a->maxX - b->maxX < tolerance && a->maxY - b->maxY < tolerance;
}

bool JWSpatialRelation::isEnvelopsDisjoint(const JWEnvelop* a, const JWEnvelop* b) const {
    return a != nullptr && b != nullptr && a != b && a->isDisjoin(*b);
}

// Disjoint

bool JWSpatialRelation::isPointsDisjoint(const JWPoint* a, const JWPoint* b) const {
    return a != nullptr && b != nullptr && !isPointsIntersect(a, b);
}

bool JWSpatialRelation::isPointMultiPointDisjoint(const JWPoint* a, const JWMultiPoint* b) const {
    return a != nullptr && b != nullptr && !isPointMultiPointIntersect(a, b);
}

bool JWSpatialRelation::isPointLinestringDisjoint(const JWPoint* a, const JWLineString* b) const {
    return a != nullptr && b != nullptr && !isPointLinestringIntersect(a, b);
}

bool JWSpatialRelation::isPointPolygonDisjoint(const JWPoint* a, const JWPolygon* b) const {
    return whenGiven("isPointPolygonDisjoint", a, b, [&] {
        const PointPlace place = placeOf(*a, *b);
        return place.location == kExterior || place.onExteriorRing;
    });
}

bool JWSpatialRelation::isMultiPointsDisjoint(const JWMultiPoint* a, const JWMultiPoint* b) const {
    return apart("isMultiPointsDisjoint", a, b);
}

bool JWSpatialRelation::isMultiPointLinestringDisjoint(const JWMultiPoint* a,
                                                       const JWLineString* b) const {
    return apart("isMultiPointLinestringDisjoint", a, b);
}

bool JWSpatialRelation::isMultiPointPolygonDisjoint(const JWMultiPoint* a,
                                                    const JWPolygon* b) const {
    return apart("isMultiPointPolygonDisjoint", a, b);
}

bool JWSpatialRelation::isLinestringPolygonDisjoint(const JWLineString* a,
                                                    const JWPolygon* b) const {
    return apart("isLinestringPolygonDisjoint", a, b);
}

bool JWSpatialRelation::isPolygonsDisjoint(const JWPolygon* a, const JWPolygon* b) const {
    return apart("isPolygonsDisjoint", a, b);
}

// Touch

bool JWSpatialRelation::isPointLinestringTouch(const JWPoint* a, const JWLineString* b) const {
    return whenGiven("isPointLinestringTouch", a, b,
                     [&] { return placeOf(*a, *b).location == kBoundary; });
}

bool JWSpatialRelation::isMultiPointLinestringTouch(const JWMultiPoint* a,
                                                    const JWLineString* b) const {
    return related("isMultiPointLinestringTouch", Predicate::kTouches, a, b);
}

bool JWSpatialRelation::isPointPolygonTouch(const JWPoint* a, const JWPolygon* b) const {
    return whenGiven("isPointPolygonTouch", a, b,
                     [&] { return placeOf(*a, *b).location == kBoundary; });
}

bool JWSpatialRelation::isMultiPointPolygonTouch(const JWMultiPoint* a, const JWPolygon* b) const {
    return whenGiven("isMultiPointPolygonTouch", a, b, [&] {
        const PlacesInPolygon places = placesOf(*a, *b);
        return places.inside == 0 && places.onRings > 0;
    });
}

bool JWSpatialRelation::isLinestringsTouch(const JWLineString* a, const JWLineString* b) const {
    return related("isLinestringsTouch", Predicate::kTouches, a, b);
}

// Cross

bool JWSpatialRelation::isMulPointLinestringCross(const JWMultiPoint* a,
                                                  const JWLineString* b) const {
    return related("isMulPointLinestringCross", Predicate::kCrosses, a, b);
}

bool JWSpatialRelation::isLinestringsCross(const JWLineString* a, const JWLineString* b) const {
    return related("isLinestringsCross", Predicate::kCrosses, a, b);
}

bool JWSpatialRelation::isMulPointsPolygonCross(const JWMultiPoint* a, const JWPolygon* b) const {
    return whenGiven("isMulPointsPolygonCross", a, b, [&] {
        const PlacesInPolygon places = placesOf(*a, *b);
        return places.inside > 0 && places.outside > 0;
    });
}

bool JWSpatialRelation::isLinestringPolygonCross(const JWLineString* a, const JWPolygon* b) const {
    return related("isLinestringPolygonCross", Predicate::kCrosses, a, b);
}

// Contain

bool JWSpatialRelation::isMulPointContainPoint(const JWMultiPoint* a, const JWPoint* b) const {
    return isPointMultiPointIntersect(b, a);
}

bool JWSpatialRelation::isMulPointContainMultiPoint(const JWMultiPoint* a,
                                                    const JWMultiPoint* b) const {
    return related("isMulPointContainMultiPoint", Predicate::kContains, a, b);
}

bool JWSpatialRelation::isLinestringContainPoint(const JWLineString* a, const JWPoint* b) const {
    return isPointLinestringIntersect(b, a);
}

bool JWSpatialRelation::isLinestringContainMultiPoint(const JWLineString* a,
                                                      const JWMultiPoint* b) const {
    return related("isLinestringContainMultiPoint", Predicate::kCovers, a, b);
}

bool JWSpatialRelation::isPolygonContainPoint(const JWPolygon* a, const JWPoint* b) const {
    return whenGiven("isPolygonContainPoint", a, b, [&] {
        const PointPlace place = placeOf(*b, *a);
        return place.location == kInterior && !place.onExteriorRing;
    });
}

bool JWSpatialRelation::isPolygonContainMultiPoint(const JWPolygon* a,
                                                   const JWMultiPoint* b) const {
    return related("isPolygonContainMultiPoint", Predicate::kContains, a, b);
}

bool JWSpatialRelation::isPolygonContainLinestring(const JWPolygon* a,
                                                   const JWLineString* b) const {
    return whenGiven("isPolygonContainLinestring", a, b, [&] {
        return holds(Predicate::kContains, *a, *b) && !PolygonPlaces(*a).isAnyOnExteriorRing(*b);
    });
}

bool JWSpatialRelation::isPolygonContainPolygon(const JWPolygon* a, const JWPolygon* b) const {
    return whenGiven("isPolygonContainPolygon", a, b, [&] {
        if (!holds(Predicate::kContains, *a, *b)) return false;
        const PolygonPlaces places(*a);
        const std::vector<JWRing>& rings = b->getRingList();
        return std::none_of(rings.begin(), rings.end(),
                            [&](const JWRing& ring) { return places.isAnyOnExteriorRing(ring); });
    });
}

// Intersect

bool JWSpatialRelation::isPointsIntersect(const JWPoint* a, const JWPoint* b) const {
    return a != nullptr && b != nullptr && isFinite(*a) && *a == *b;
}

bool JWSpatialRelation::isPointMultiPointIntersect(const JWPoint* a, const JWMultiPoint* b) const {
    return a != nullptr && b != nullptr && detail::isFinite(*b) && isFinite(*a) &&
           b->isContained(*a);
}

bool JWSpatialRelation::isMultiPointsIntersect(const JWMultiPoint* a, const JWMultiPoint* b) const {
    return meet("isMultiPointsIntersect", a, b);
}

bool JWSpatialRelation::isPointLinestringIntersect(const JWPoint* a, const JWLineString* b) const {
    return whenGiven("isPointLinestringIntersect", a, b,
                     [&] { return placeOf(*a, *b).location != kExterior; });
}

bool JWSpatialRelation::isMultiPointLinestringIntersect(const JWMultiPoint* a,
                                                        const JWLineString* b) const {
    return meet("isMultiPointLinestringIntersect", a, b);
}

bool JWSpatialRelation::isPointPolygonIntersect(const JWPoint* a, const JWPolygon* b) const {
    return whenGiven("isPointPolygonIntersect", a, b,
                     [&] { return placeOf(*a, *b).location != kExterior; });
}

bool JWSpatialRelation::isMultiPointPolygonIntersect(const JWMultiPoint* a,
                                                     const JWPolygon* b) const {
    return meet("isMultiPointPolygonIntersect", a, b);
}

bool JWSpatialRelation::isLinestringsIntersect(const JWLineString* a, const JWLineString* b) const {
    return meet("isLinestringsIntersect", a, b);
}

bool JWSpatialRelation::isLinestringsPolygonIntersect(const JWLineString* a,
                                                      const JWPolygon* b) const {
    return meet("isLinestringsPolygonIntersect", a, b);
}

bool JWSpatialRelation::isPolygonsIntersect(const JWPolygon* a, const JWPolygon* b) const {
    return meet("isPolygonsIntersect", a, b);
}

}  // namespace jws
