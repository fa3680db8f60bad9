// SPDX-License-Identifier: MIT
//
// JWSpatialRelation: the relation of two geometries, of a geometry and a rectangle, and of two
// rectangles, as codes and as named predicates.
#ifndef JW_SPATIALRELATION_H
#define JW_SPATIALRELATION_H

#include "jw_export.h"
#include "jw_geometry.h"
#include "jw_relationmatrix.h"

namespace jws {

/// Classifies spatial relations. Holds a tolerance, which only `isEnvelopsEqual` uses, and only
/// when a derived class has switched it on; geometries are compared exactly.
///
/// Predicates have the meaning of the OGC for the kinds in their names (see `JWRelationMatrix` for
/// what is interior, boundary and exterior), except where their comment says otherwise: some decide
/// with a crossing-number test to which a point on the exterior ring is outside; one on the ring of
/// a hole is neither inside nor outside. "On the exterior ring" below means on an edge of ring 0 of
/// the polygon. Areas are read by the even-odd rule over
/// all rings, also where holes overlap or lie outside. Signs are exact.
///
/// A null operand gives 0 (`JWRelationNone`) from a classifier and false from a predicate, the
/// disjoint ones included. An empty operand, and one with a coordinate that is NaN or infinite, has
/// no points: it is disjoint from everything, and all other predicates are false.
///
/// Members do not change the object, so one object may serve any number of threads as long as its
/// tolerance is not changed. Cost: of points O(n); otherwise about O((n + m + k) log(n + m)) for k
/// pairs of edges whose rectangles meet, less where an early witness settles the answer.
class JW_API JWSpatialRelation {
  public:
    /// Tolerance 1e-10, switched off.
    JWSpatialRelation() = default;
    JWSpatialRelation(const JWSpatialRelation&) = default;
    JWSpatialRelation& operator=(const JWSpatialRelation&) = default;
    virtual ~JWSpatialRelation();

    void setTolerance(double value) { tolerance = value; }
    double getTolerance() const { return tolerance; }

    /// 1 equal, 2 disjoint, 6 the first contains the second, 7 it lies within, borders included in
    /// both; otherwise 8. Decided in this order, so equal rectangles are 1, and rectangles that
    /// only touch are 8.
    enumJWSpatialRelation getEnvelopAndEnvelop(const JWEnvelop* a, const JWEnvelop* b) const;
    /// 7 when the point lies in the rectangle or on its border, otherwise 2.
    enumJWSpatialRelation getRawPointAndEnvelopSR(const JWRawPoint* p, const JWEnvelop* e) const;
    enumJWSpatialRelation getPointAndEnvelopSR(const JWPoint* p, const JWEnvelop* e) const;
    /// 7 when both ends lie in the rectangle or on its border, 2 when no point of the segment does,
    /// otherwise 8. A segment of no length is a point.
    enumJWSpatialRelation getSegmentAndEnvelopSR(const JWLine* line, const JWEnvelop* e) const;
    /// 1 when x and y are equal, otherwise 2.
    enumJWSpatialRelation getPointAndPointSR(const JWPoint* a, const JWPoint* b) const;
    /// Tells whether two geometries are disjoint (2) or meet (8), by one predicate for each pair of
    /// kinds among point, line string, polygon and their multi-forms; multi-forms meet when a part
    /// does. A bare ring acts as a polygon. 0 for null and for pairs of other kinds.
    ///
    /// Kept on purpose: a line string with a multi-point, in either order, gives 2 when they meet
    /// and 8 when they do not, the reverse of every other pair. A point or a multi-point's members
    /// on the exterior ring of a polygon: the point is disjoint (2), the multi-point and the point
    /// with a multi-polygon meet (8).
    enumJWSpatialRelation getObjectsSR(const JWGeometry* a, const JWGeometry* b) const;

    /// True when all four values are equal. With the tolerance on: when each value of `a` minus
    /// that of `b` is less than the tolerance, which has no lower limit, so that a rectangle far
    /// below and to the left of `b` counts as equal too. False for null.
    bool isEnvelopsEqual(const JWEnvelop* a, const JWEnvelop* b) const;
    /// True when one lies strictly beyond the other on some axis. False for null, for one and the
    /// same object, and for rectangles that touch.
    bool isEnvelopsDisjoint(const JWEnvelop* a, const JWEnvelop* b) const;

    // Disjoint: no point in common.
    bool isPointsDisjoint(const JWPoint* a, const JWPoint* b) const;
    bool isPointMultiPointDisjoint(const JWPoint* a, const JWMultiPoint* b) const;
    bool isPointLinestringDisjoint(const JWPoint* a, const JWLineString* b) const;
    /// True also for a point on the exterior ring; a point on the ring of a hole is not disjoint.
    bool isPointPolygonDisjoint(const JWPoint* a, const JWPolygon* b) const;
    bool isMultiPointsDisjoint(const JWMultiPoint* a, const JWMultiPoint* b) const;
    bool isMultiPointLinestringDisjoint(const JWMultiPoint* a, const JWLineString* b) const;
    bool isMultiPointPolygonDisjoint(const JWMultiPoint* a, const JWPolygon* b) const;
    bool isLinestringPolygonDisjoint(const JWLineString* a, const JWPolygon* b) const;
    bool isPolygonsDisjoint(const JWPolygon* a, const JWPolygon* b) const;

    // Touch: a point in common, but not of both interiors.
    /// The point is an end of an open line.
    bool isPointLinestringTouch(const JWPoint* a, const JWLineString* b) const;
    bool isMultiPointLinestringTouch(const JWMultiPoint* a, const JWLineString* b) const;
    bool isPointPolygonTouch(const JWPoint* a, const JWPolygon* b) const;
    bool isMultiPointPolygonTouch(const JWMultiPoint* a, const JWPolygon* b) const;
    bool isLinestringsTouch(const JWLineString* a, const JWLineString* b) const;

    // Cross: interiors meet, and the first is not within the second; for two lines, in points.
    bool isMulPointLinestringCross(const JWMultiPoint* a, const JWLineString* b) const;
    bool isLinestringsCross(const JWLineString* a, const JWLineString* b) const;
    /// A point inside and a point outside; a point on the exterior ring counts as outside.
    bool isMulPointsPolygonCross(const JWMultiPoint* a, const JWPolygon* b) const;
    bool isLinestringPolygonCross(const JWLineString* a, const JWPolygon* b) const;

    // Contain: the first holds every point of the second.
    bool isMulPointContainPoint(const JWMultiPoint* a, const JWPoint* b) const;
    bool isMulPointContainMultiPoint(const JWMultiPoint* a, const JWMultiPoint* b) const;
    /// The ends of the line are points of it, too.
    bool isLinestringContainPoint(const JWLineString* a, const JWPoint* b) const;
    bool isLinestringContainMultiPoint(const JWLineString* a, const JWMultiPoint* b) const;
    /// The point is inside; not on a ring.
    bool isPolygonContainPoint(const JWPolygon* a, const JWPoint* b) const;
    /// A point at least is inside, and none is outside.
    bool isPolygonContainMultiPoint(const JWPolygon* a, const JWMultiPoint* b) const;
    /// False also when a vertex of the line lies on the exterior ring.
    bool isPolygonContainLinestring(const JWPolygon* a, const JWLineString* b) const;
    /// False also when a vertex of `b` lies on the exterior ring of `a`: a polygon does not contain
    /// itself.
    bool isPolygonContainPolygon(const JWPolygon* a, const JWPolygon* b) const;

    // Intersect: a point in common.
    bool isPointsIntersect(const JWPoint* a, const JWPoint* b) const;
    bool isPointMultiPointIntersect(const JWPoint* a, const JWMultiPoint* b) const;
    bool isMultiPointsIntersect(const JWMultiPoint* a, const JWMultiPoint* b) const;
    bool isPointLinestringIntersect(const JWPoint* a, const JWLineString* b) const;
    bool isMultiPointLinestringIntersect(const JWMultiPoint* a, const JWLineString* b) const;
    bool isPointPolygonIntersect(const JWPoint* a, const JWPolygon* b) const;
    bool isMultiPointPolygonIntersect(const JWMultiPoint* a, const JWPolygon* b) const;
    bool isLinestringsIntersect(const JWLineString* a, const JWLineString* b) const;
    bool isLinestringsPolygonIntersect(const JWLineString* a, const JWPolygon* b) const;
    bool isPolygonsIntersect(const JWPolygon* a, const JWPolygon* b) const;

  protected:
    /// Have `isEnvelopsEqual` and the classifier of rectangles use the tolerance, or not.
    void openTolerance() { useTolerance = true; }
    void closeTolerance() { useTolerance = false; }
    bool isUseTolerance() const { return useTolerance; }

  private:
    double tolerance = 1e-10;  ///< layer units
    bool useTolerance = false;
};

}  // namespace jws

#endif  // JW_SPATIALRELATION_H
