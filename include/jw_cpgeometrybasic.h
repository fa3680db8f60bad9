// SPDX-License-Identifier: MIT
//
// JWCPGeometryBasic: the small computations of plane and spherical geometry that every algorithm
// stands on: distances, areas, orientation, point-on-curve and point-in-ring tests, segment
// intersection, centroids and self-intersection checks.
#ifndef JW_CPGEOMETRYBASIC_H
#define JW_CPGEOMETRYBASIC_H

#include "jw_export.h"
#include "jw_geometry.h"

namespace jws {

/// Static functions over points (`JWRawPoint`), lines and rings. The class holds no state and every
/// function may run on any number of threads at once.
///
/// Conventions:
/// - Coordinates are layer units, angles radians, areas square units; geographic input is in
///   degrees, x longitude and y latitude.
/// - A pointer may be null: each function names what it then answers. Nothing throws.
/// - A tolerance is a distance, used by its absolute value; 0 means exact.
/// - `int` tests answer 1 for yes, 0 for no and a negative number where they cannot decide.
/// - The edges of a ring or line are the pairs (point i, point i + 1) that it stores; a ring is
///   expected to repeat its first point at the end.
/// - Where a function is said to use the stored envelope, that is what `getEnvelop` returns, right
///   or stale: call `updateEnvelop` after editing points.
/// - A coordinate that is not a number makes distances NaN and tests answer 0 or "cannot decide".
/// - Distances are square roots of sums of squares: coordinates beyond about 1e154 overflow to
///   infinity.
///
/// Everything is O(1), or O(n) in the number of points, unless stated.
class JW_API JWCPGeometryBasic {
  public:
    JWCPGeometryBasic();
    JWCPGeometryBasic(const JWCPGeometryBasic& other);
    JWCPGeometryBasic& operator=(const JWCPGeometryBasic& other);
    virtual ~JWCPGeometryBasic();

    /// @name Distances
    /// @{

    /// Returns the Euclidean distance; -1.0 if a pointer is null.
    static double twoPointsDistance(const JWRawPoint* a, const JWRawPoint* b);
    /// Returns the great-circle distance in kilometres on a sphere of radius 6371.009, by the
    /// spherical law of cosines; -1.0 if a pointer is null. Below some metres the law of cosines
    /// has no digits left: use `twoPointsGreateCircle2` there.
    static double twoPointsGreateCircle1(const JWRawPoint* a, const JWRawPoint* b);
    /// Returns the great-circle distance in kilometres on a sphere of radius 6371.009, by the
    /// arc-tangent formula, good for short and antipodal distances too; 9999.0 if a pointer is
    /// null.
    static double twoPointsGreateCircle2(const JWRawPoint* a, const JWRawPoint* b);
    /// Returns the distance from `p` to the segment from `a` to `b`, which may be a single point;
    /// -1.0 if a pointer is null.
    static double pointSegmentDistance(const JWRawPoint* p, const JWRawPoint* a,
                                       const JWRawPoint* b);
    /// Returns the distance from `p` to the infinite line through `a` and `b`; if they are equal,
    /// to that point. -1.0 if a pointer is null. Computed relative to `a`, so that it does not lose
    /// digits far from the origin.
    static double pointLineDistance(const JWRawPoint* p, const JWRawPoint* a, const JWRawPoint* b);
    /// Returns the distance from `p` to the ray that starts at `a` and runs through `b`; -1.0 if a
    /// pointer is null.
    static double pointRayDistance(const JWRawPoint* p, const JWRawPoint* a, const JWRawPoint* b);
    /// @}

    /// @name Areas
    /// @{

    /// Returns the signed area, positive when a, b, c turn counter-clockwise; 0 if a pointer is
    /// null.
    static double triangleArea(const JWRawPoint* a, const JWRawPoint* b, const JWRawPoint* c);
    /// Returns the signed shoelace area, positive for counter-clockwise rings; 0 if the ring is
    /// null or has 3 points or fewer. Only the stored edges are summed: of a ring that is not
    /// closed the sum depends on where the origin lies. A closed ring is summed relative to its
    /// first point, so that a small ring far from the origin keeps its digits.
    static double ringArea(const JWRing* ring);
    /// Returns the signed ellipsoidal area, in square metres, of the quadrangle between the
    /// meridians x1 and x2 and the parallels y1 and y2 (degrees); negative when exactly one of
    /// x2 - x1 and y2 - y1 is. Degrees are turned into radians by the single-precision value of pi,
    /// and the whole globe comes out 0.4 % small: results stay comparable with stored ones.
    static double TrapezoidAreaWGS84(const double& x1, const double& y1, const double& x2,
                                     const double& y2);
    /// @}

    /// @name Orientation and position of a point
    /// @{

    /// Returns 1 if `p` lies left of the line from `a` to `b`, -1 if right, 0 within `tol` of the
    /// line; -2 if a pointer is null or the side cannot be told (a equal to b, or a difference too
    /// small for the arithmetic).
    static int isPointLeftOfLine(const JWRawPoint* p, const JWRawPoint* a, const JWRawPoint* b,
                                 const double& tol);
    /// Returns 1 if `p` lies within `tol` of the infinite line through `a` and `b`, else 0; -2 if a
    /// pointer is null.
    static int threePointsCollinear(const JWRawPoint* p, const JWRawPoint* a, const JWRawPoint* b,
                                    const double& tol);
    /// Same as `threePointsCollinear`.
    static int isPointOnLine(const JWRawPoint* p, const JWRawPoint* a, const JWRawPoint* b,
                             const double& tol);
    /// Returns 1 if `p` lies within `tol` of the segment from `a` to `b`, else 0; -2 if a pointer
    /// is null.
    static int isPointOnSegment(const JWRawPoint* p, const JWRawPoint* a, const JWRawPoint* b,
                                const double& tol);
    /// Returns 1 if `p` lies within `tol` of the ray from `a` through `b`, else 0; -2 if a pointer
    /// is null.
    static int isPointOnRay(const JWRawPoint* p, const JWRawPoint* a, const JWRawPoint* b,
                            const double& tol);
    /// Returns 1 if `p` lies inside the rectangle or on its border, else 0; -2 if a pointer is
    /// null.
    static int isPointWithinEnvelop(const JWRawPoint* p, const JWEnvelop* envelop);
    /// Returns 1 if `p` lies within `tol` of the line, else 0; -2 if a pointer is null or the line
    /// has no points. A point outside the stored envelope answers 0: the envelope is not widened by
    /// `tol`.
    static int isPointOnLineString(const JWRawPoint* p, const JWLineString* line,
                                   const double& tol);
    /// Returns 1 if `p` lies within `tol` of the ring's boundary, else 0; -2 if a pointer is null
    /// or the ring has no points. A point outside the stored envelope answers 0, as above. Below 3
    /// points only the first point counts.
    static int isPointOnRing(const JWRawPoint* p, const JWRing* ring, const double& tol);
    /// Returns 1 if `p` lies strictly inside the ring, by the crossing number; 0 outside, on the
    /// boundary, outside the stored envelope or for fewer than 4 points; -1 if a pointer is null.
    /// A vertex is on the boundary exactly. On an edge that is neither horizontal nor met at a
    /// vertex, "on the boundary" means that the computed crossing equals p.x.
    static int isPointWithinRingCN(const JWRawPoint* p, const JWRing* ring);
    /// Returns 1 if the ring winds around `p`, else 0 (also outside the stored envelope or for
    /// fewer than 4 points); -2 if a pointer is null. Boundary points can come out either way.
    static int isPointWithinRingWN(const JWRawPoint* p, const JWRing* ring);
    /// Returns what `isPointWithinRingCN` does of a ring with these points; -1 if a pointer is
    /// null, if the line has 3 points or fewer, or if its first and last points differ. The stored
    /// envelope is used only when it is valid.
    static int isPointWithinClosedLineCN(const JWRawPoint* p, const JWLineString* line);
    /// @}

    /// @name Angles
    /// @{

    /// Returns the angle at `vertex` between the arms to `p1` and `p2`, in [0, pi]; 0 if an arm has
    /// length 0; -1.0 if a pointer is null.
    static double threePointsIncludedAngle(const JWRawPoint* p1, const JWRawPoint* vertex,
                                           const JWRawPoint* p2);
    /// Returns the direction from `a` to `b`, counter-clockwise from the positive x axis, from 0 to
    /// 2 pi; 0 if they are equal; 9999.0 if a pointer is null. A direction below the axis by less
    /// than the arithmetic resolves answers 2 pi itself.
    static double segmentXAxisAngle(const JWRawPoint* a, const JWRawPoint* b);
    /// @}

    /// @name Segments
    /// @{

    /// Intersects the segment from `a0` to `a1` with the one from `b0` to `b1`, without tolerance.
    ///
    /// | Code | Meaning |
    /// |---|---|
    /// | -3 | a pointer is null |
    /// | -2 | both segments are points, different (I0 = a0, I1 = b0) |
    /// | -1 | both segments are points, equal (I0) |
    /// | 0 | no intersection |
    /// | 1 | one crossing or touching point (I0) |
    /// | 2 | collinear overlap from I0 to I1, in the direction of b |
    /// | 3 | parallel, not collinear |
    /// | 4 | collinear, disjoint |
    /// | 5 | collinear, touching in one point (I0) |
    ///
    /// A point segment beside the line of the other one is "parallel, not collinear" as well.
    /// Outputs that a code does not name are left as they were. Segments whose rectangles are apart
    /// never meet, however the rounding of nearly parallel directions comes out. A non-finite
    /// coordinate gives 0.
    static int segmentIntersect(const JWRawPoint* a0, const JWRawPoint* a1, const JWRawPoint* b0,
                                const JWRawPoint* b1, JWRawPoint* I0, JWRawPoint* I1);
    /// Tells whether a, b, c turn strictly clockwise; false if collinear or if a pointer is null.
    static bool isClockWise(const JWRawPoint* a, const JWRawPoint* b, const JWRawPoint* c);
    /// Tells whether two segments cross, by the orientation test alone: each must have its ends on
    /// different sides of the other, collinear counting as not clockwise. Touching segments come
    /// out either way and collinear ones false. False if a pointer is null.
    static bool isSegmentsIntersect(const JWRawPoint* a0, const JWRawPoint* a1,
                                    const JWRawPoint* b0, const JWRawPoint* b1);
    /// @}

    /// @name Representative points
    /// @{

    /// Stores the ring's centroid if it lies strictly inside, else the mean of the first three
    /// points, which may well lie outside; true in both cases. Below three points the mean of those
    /// there are. False, and `p` unchanged, for a null pointer or a ring without points.
    static bool getPointInRing(const JWRing* ring, JWRawPoint* p);
    /// Stores the mean of the first three points (of those there are, below three) and returns
    /// true. False, and `p` unchanged, for a null pointer or a line without points.
    static bool getPointInClosedLine(const JWLineString* line, JWRawPoint* p);
    /// Stores the area centroid. False, and `c` unchanged, if a pointer is null, or for 3 points or
    /// fewer or an area that is 0 or not finite. Computed relative to the first point: accurate far
    /// from the origin, and a ring that is not closed counts as closed by a straight edge.
    static bool ringCentroid(const JWRing* ring, JWRawPoint* c);
    /// Stores the mean of the segment midpoints weighted by length. False, and `c` unchanged, if a
    /// pointer is null or for fewer than 2 points. A line of length 0 stores NaN and returns true.
    static bool lineStringCentroid(const JWLineString* line, JWRawPoint* c);
    /// @}

    /// @name Input validation
    /// @{

    /// Tells whether a line is degenerate (null, 2 points or fewer) or meets itself: a pair of
    /// neighbouring segments overlaps or is the same point twice, or two other segments have any
    /// point in common, as `segmentIntersect` says. A line whose ends meet is therefore weird.
    /// About O(n log n) for the lines of practice, hatching and spikes included, O(n^2) at worst;
    /// if memory is short the answer is true and the last error is set.
    static bool isLineStringWeird(const JWLineString* line);
    /// Applies the same rule to a ring; null or 3 points or fewer is weird. The first and the last
    /// edge of a closed ring meet and are not neighbours by index, so every closed ring is weird: a
    /// test for input that stores no closing point.
    static bool isRingWeird(const JWRing* ring);
    /// @}
};

}  // namespace jws

#endif  // JW_CPGEOMETRYBASIC_H
