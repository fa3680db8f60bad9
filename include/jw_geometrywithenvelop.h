// SPDX-License-Identifier: MIT
//
// JWGeometryWithEnvelop: lines, rings and polygons against a query rectangle.
#ifndef JW_GEOMETRYWITHENVELOP_H
#define JW_GEOMETRYWITHENVELOP_H

#include "jw_export.h"
#include "jw_geometry.h"

namespace jws {

/// Static tests of geometries against a rectangle, for layer filters and candidates.
///
/// Stored envelopes are used: call `updateEnvelop` after editing. "Disjoint" starts from
/// `JWEnvelop::intersected`, which is strict: a geometry whose envelope only touches the rectangle,
/// such as a line along its border, is disjoint, and so is one whose envelope has no width or no
/// height along the border. A null geometry is disjoint and not within. No state, nothing throws,
/// every function may run on any number of threads at once. O(n) in the number of points.
class JW_API JWGeometryWithEnvelop {
  public:
    JWGeometryWithEnvelop();
    JWGeometryWithEnvelop& operator=(const JWGeometryWithEnvelop& other);
    ~JWGeometryWithEnvelop();

    /// Tells whether a, b, c turn strictly clockwise; collinear gives false.
    static bool isClockwise(const JWRawPoint& a, const JWRawPoint& b, const JWRawPoint& c);
    /// Tells whether two segments cross: their rectangles meet, borders included, and each has its
    /// ends on different sides of the other, collinear counting as not clockwise. Touching segments
    /// come out either way and collinear ones false.
    static bool isSegmentIntersect(const JWRawPoint& a0, const JWRawPoint& a1, const JWRawPoint& b0,
                                   const JWRawPoint& b1);
    /// Tells whether two segments have a point in common, touching and overlapping included, by the
    /// parametric test of `JWCPGeometryBasic::segmentIntersect`. Collinear segments of which one
    /// has length 0 fail an assertion; where assertions are off, they meet if their rectangles do.
    static bool segmentIntersected(const JWRawPoint& a0, const JWRawPoint& a1, const JWRawPoint& b0,
                                   const JWRawPoint& b1);
    /// Tells whether `p` lies in the ring by crossing parity. A boundary point comes out in on a
    /// left or lower side and out on a right or upper one. Uses no envelope; false for null or no
    /// points.
    static bool point_in_ring(const JWRawPoint& p, const JWRing* ring);
    /// Tells whether `p` lies in the exterior ring and in no interior ring, by `point_in_ring`.
    /// A polygon without rings fails an assertion; where assertions are off it holds no point.
    /// Null holds none.
    static bool point_in_polygon(const JWRawPoint& p, const JWPolygon* polygon);

    /// Tells whether no vertex of the line lies in the rectangle (border included) and no segment
    /// crosses one of its edges; true at once if the envelopes do not overlap strictly.
    static bool isLineStringDisjoinWithEnvelop(const JWLineString& line, const JWEnvelop& envelop);
    /// Tells whether ring (as an area) and rectangle are apart; true at once if the envelopes do
    /// not overlap strictly.
    static bool isRingDisjoinWithEnvelop(const JWRing& ring, const JWEnvelop& envelop);
    /// Tells whether the rectangle lies in the ring: its corners do by `point_in_ring`, and no edge
    /// crosses. A rectangle that touches the ring comes out either way.
    static bool isEnvelopWithinRing(const JWEnvelop& envelop, const JWRing& ring);
    /// Tells whether polygon and rectangle are apart; a rectangle inside a hole is.
    static bool isPolygonDisjoinWithEnvelop(const JWPolygon* polygon, const JWEnvelop& envelop);
    /// Tells whether every member is disjoint from the rectangle; true at once if the envelope of
    /// the collection does not overlap it strictly.
    static bool isMultiLineStringDisjoinWithEnvelop(const JWMultiLineString* lines,
                                                    const JWEnvelop& envelop);
    /// Tells whether every member is disjoint from the rectangle; true at once if the envelope of
    /// the collection does not overlap it strictly.
    static bool isMultiPolygonDisjoinWithEnvelop(const JWMultiPolygon* polygons,
                                                 const JWEnvelop& envelop);
    /// Tells whether the line is not disjoint from the rectangle and its envelope lies in it,
    /// borders included. A line along the border counts as disjoint and so not as within.
    static bool isLineStringWithinEnvelop(const JWLineString* line, const JWEnvelop& envelop);
    /// Returns false for every input: a multi-line string is never reported as within.
    static bool isMultiLineStringWithinEnvelop(const JWMultiLineString* lines,
                                               const JWEnvelop& envelop);
};

}  // namespace jws

#endif  // JW_GEOMETRYWITHENVELOP_H
