// SPDX-License-Identifier: MIT
//
// The arithmetic of points and segments, inline, for the loops of every algorithm. The public
// classes of primitives add only null answers and codes to it. Formulas are evaluated as written
// (no contraction, no reassociation), because signs and ties depend on the rounding.
#ifndef JW_FOUNDATION_SEGMENT_MATH_H
#define JW_FOUNDATION_SEGMENT_MATH_H

#include <algorithm>
#include <cmath>

#include "jw_envelop.h"

namespace jws::detail {

inline JWRawPoint difference(const JWRawPoint& a, const JWRawPoint& b) {
    return JWRawPoint(a.x - b.x, a.y - b.y);
}

inline double dot(const JWRawPoint& u, const JWRawPoint& v) { return u.x * v.x + u.y * v.y; }

inline double cross(const JWRawPoint& u, const JWRawPoint& v) { return u.x * v.y - u.y * v.x; }

inline double length(const JWRawPoint& v) { return std::sqrt(v.x * v.x + v.y * v.y); }

inline double pointDistance(const JWRawPoint& a, const JWRawPoint& b) {
    return length(difference(a, b));
}

/// Point `t` of the way along `v` from `a`.
inline JWRawPoint pointAlong(const JWRawPoint& a, const JWRawPoint& v, double t) {
    return JWRawPoint(a.x + t * v.x, a.y + t * v.y);
}

/// Closest point of the segment ab; a segment of length 0 gives a.
inline JWRawPoint closestOnSegment(const JWRawPoint& p, const JWRawPoint& a, const JWRawPoint& b) {
    const JWRawPoint v = difference(b, a);
    const double c1 = dot(difference(p, a), v);
    if (c1 <= 0) return a;
    const double c2 = dot(v, v);
    if (c2 <= c1) return b;
    return pointAlong(a, v, c1 / c2);
}

inline double segmentDistance(const JWRawPoint& p, const JWRawPoint& a, const JWRawPoint& b) {
    return pointDistance(p, closestOnSegment(p, a, b));
}

/// Distance to the infinite line, by twice the area of the triangle. Taken relative to a: products
/// of the coordinates as they are cancel, at projected offsets by 0.3 mm for lines of some metres.
inline double lineDistance(const JWRawPoint& p, const JWRawPoint& a, const JWRawPoint& b) {
    if (a == b) return pointDistance(p, a);
    const JWRawPoint v = difference(b, a);
    return std::fabs(cross(v, difference(p, a))) / length(v);
}

inline double rayDistance(const JWRawPoint& p, const JWRawPoint& a, const JWRawPoint& b) {
    if (dot(difference(p, a), difference(b, a)) <= 0) return pointDistance(p, a);
    return lineDistance(p, a, b);
}

/// Signed area, positive counter-clockwise.
inline double signedTriangleArea(const JWRawPoint& a, const JWRawPoint& b, const JWRawPoint& c) {
    return ((c.y - a.y) * (b.x - a.x) - (b.y - a.y) * (c.x - a.x)) * 0.5;
}

inline bool turnsClockwise(const JWRawPoint& a, const JWRawPoint& b, const JWRawPoint& c) {
    return (b.y - a.y) * (c.x - a.x) > (c.y - a.y) * (b.x - a.x);
}

/// Each segment has its ends on different sides of the other; collinear is not clockwise.
inline bool segmentsCross(const JWRawPoint& a0, const JWRawPoint& a1, const JWRawPoint& b0,
                          const JWRawPoint& b1) {
    return turnsClockwise(a0, b0, b1) != turnsClockwise(a1, b0, b1) &&
           turnsClockwise(a0, a1, b0) != turnsClockwise(a0, a1, b1);
}

/// The rectangles around two segments have a point in common, borders included.
inline bool segmentBoxesMeet(const JWRawPoint& a0, const JWRawPoint& a1, const JWRawPoint& b0,
                             const JWRawPoint& b1) {
    return std::min(a0.x, a1.x) <= std::max(b0.x, b1.x) &&
           std::max(a0.x, a1.x) >= std::min(b0.x, b1.x) &&
           std::min(a0.y, a1.y) <= std::max(b0.y, b1.y) &&
           std::max(a0.y, a1.y) >= std::min(b0.y, b1.y);
}

inline bool inUnitInterval(double t) { return t >= 0 && t <= 1; }

inline bool withinTolerance(double distance, double tol) {
    return std::fabs(tol) >= std::fabs(distance);
}

inline bool pointNearSegment(const JWRawPoint& p, const JWRawPoint& a, const JWRawPoint& b,
                             double tol) {
    return withinTolerance(segmentDistance(p, a, b), tol);
}

/// `p` is farther than `tol` from the rectangle around ab by so much that the rounding of
/// `segmentDistance` cannot hide it: a few units in the last place of the edge's coordinates, and
/// the size below which squares underflow.
inline bool clearlyFarFromEdge(const JWRawPoint& p, const JWRawPoint& a, const JWRawPoint& b,
                               double tol) {
    const double reach = std::fabs(tol) + 1e-150;
    const double reachX = reach + 2e-15 * (std::fabs(a.x) + std::fabs(b.x) + std::fabs(tol));
    const double reachY = reach + 2e-15 * (std::fabs(a.y) + std::fabs(b.y) + std::fabs(tol));
    return p.x - std::max(a.x, b.x) > reachX || std::min(a.x, b.x) - p.x > reachX ||
           p.y - std::max(a.y, b.y) > reachY || std::min(a.y, b.y) - p.y > reachY;
}

/// What two segments have in common; the codes of `JWCPGeometryBasic::segmentIntersect`.
enum SegmentRelation {
    kPointsDiffer = -2,
    kPointsEqual = -1,
    kApart = 0,
    kOnePoint = 1,
    kOverlap = 2,
    kParallel = 3,
    kCollinearApart = 4,
    kCollinearTouch = 5,
};

/// Both segments are longer than 0 and on one line.
inline SegmentRelation intersectCollinear(const JWRawPoint& a0, const JWRawPoint& a1,
                                          const JWRawPoint& b0, const JWRawPoint& b1,
                                          JWRawPoint& I0, JWRawPoint& I1) {
    const JWRawPoint v = difference(b1, b0);
    double t0 = v.x != 0 ? (a0.x - b0.x) / v.x : (a0.y - b0.y) / v.y;
    double t1 = v.x != 0 ? (a1.x - b0.x) / v.x : (a1.y - b0.y) / v.y;
    if (t0 > t1) std::swap(t0, t1);
    if (t0 > 1 || t1 < 0 || !segmentBoxesMeet(a0, a1, b0, b1)) return kCollinearApart;
    t0 = std::max(t0, 0.0);
    t1 = std::min(t1, 1.0);
    I0 = pointAlong(b0, v, t0);
    if (t0 == t1) return kCollinearTouch;
    I1 = pointAlong(b0, v, t1);
    return kOverlap;
}

/// Parallel segments: u, v and w as in `intersectSegments`.
inline SegmentRelation intersectParallel(const JWRawPoint& a0, const JWRawPoint& a1,
                                         const JWRawPoint& b0, const JWRawPoint& b1, JWRawPoint& I0,
                                         JWRawPoint& I1) {
    const JWRawPoint w = difference(a0, b0);
    if (cross(difference(a1, a0), w) != 0 || cross(difference(b1, b0), w) != 0) return kParallel;
    const bool aIsPoint = a0 == a1;
    const bool bIsPoint = b0 == b1;
    if (!aIsPoint && !bIsPoint) return intersectCollinear(a0, a1, b0, b1, I0, I1);
    if (aIsPoint && bIsPoint) {
        I0 = a0;
        if (a0 == b0) return kPointsEqual;
        I1 = b0;
        return kPointsDiffer;
    }
    const bool meet =
        segmentBoxesMeet(a0, a1, b0, b1) &&
        (aIsPoint ? pointNearSegment(a0, b0, b1, 0) : pointNearSegment(b0, a0, a1, 0));
    if (!meet) return kApart;
    I0 = aIsPoint ? a0 : b0;
    return kOnePoint;
}

/// Intersects segment a with segment b without tolerance; outputs that the answer does not name
/// stay as they are.
///
/// The parameters of nearly parallel segments are rounding noise and may land in [0, 1] for
/// segments that are far apart. Such an answer stands only if the rectangles meet, which also makes
/// a search by rectangles see exactly the pairs that all pairs would give.
inline SegmentRelation intersectSegments(const JWRawPoint& a0, const JWRawPoint& a1,
                                         const JWRawPoint& b0, const JWRawPoint& b1, JWRawPoint& I0,
                                         JWRawPoint& I1) {
    const JWRawPoint u = difference(a1, a0);
    const JWRawPoint v = difference(b1, b0);
    const double D = cross(u, v);
    if (D == 0) return intersectParallel(a0, a1, b0, b1, I0, I1);
    const JWRawPoint w = difference(a0, b0);
    const double s = cross(v, w) / D;
    if (!inUnitInterval(s)) return kApart;
    const double t = cross(u, w) / D;
    if (!inUnitInterval(t) || !segmentBoxesMeet(a0, a1, b0, b1)) return kApart;
    I0 = pointAlong(a0, u, s);
    return kOnePoint;
}

}  // namespace jws::detail

#endif  // JW_FOUNDATION_SEGMENT_MATH_H
