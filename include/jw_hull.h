// SPDX-License-Identifier: MIT
//
// JWHull: the convex hull of a list of points.
#ifndef JW_HULL_H
#define JW_HULL_H

#include <vector>

#include "jw_export.h"
#include "jw_geometry.h"

namespace jws {

namespace detail {
class PointRuns;
std::vector<JWRawPoint> convexHull(const PointRuns& points);
}  // namespace detail

/// Convex hulls by Andrew's monotone chain (1979) with exact orientation. No state; all functions
/// may run on any number of threads.
///
/// The forms differ in how the points are given and return the same ring: the first n points,
/// counter-clockwise from the lexicographically smallest, closed, without corners on the line of
/// their neighbours. Points on one line give the two extremes and the first again, equal points
/// that point twice. Three points exactly on one line give false, however.
///
/// Answers are false, and the ring as it was, for a null argument, n below 3 or above the size of
/// the vector, a null pointer among the points and a coordinate that is NaN or infinite. Cost:
/// O(n log n) at worst, O(n) for points in general position.
class JW_API JWHull {
  public:
    JWHull();
    ~JWHull();
    JWHull& operator=(const JWHull&);

    static bool create2DHull(const std::vector<JWRawPoint*>* points, int n, JWRing* ring);
    static bool create2DHull(const std::vector<JWPoint*>* points, int n, JWRing* ring);
    static bool create2DHull_AM(const std::vector<JWRawPoint>* points, int n, JWRing* ring);

    /// Same, for vectors by reference.
    static bool create2DHull(const std::vector<JWRawPoint*>& points, int n, JWRing* ring);
    static bool create2DHull(const std::vector<JWPoint*>& points, int n, JWRing* ring);
    static bool create2DHull_AM(const std::vector<JWRawPoint>& points, int n, JWRing* ring);

  private:
    friend std::vector<JWRawPoint> detail::convexHull(const detail::PointRuns& points);

    // The order that points are sorted by: 1 when a comes before b by x, then y, else 0.
    static int cmpPoints(const JWRawPoint& a, const JWRawPoint& b) { return a < b ? 1 : 0; }
    static int cmpPoints1(const JWRawPoint* a, const JWRawPoint* b);
    static int cmpPoints2(const JWPoint* a, const JWPoint* b);

    // (P1.x - P0.x)(P2.y - P0.y) - (P2.x - P0.x)(P1.y - P0.y): above 0 when P2 is left of the line
    // from P0 to P1, 0 when the three are on a line. The sign is that of the exact value.
    static double isLeft(const JWRawPoint& P0, const JWRawPoint& P1, const JWRawPoint& P2);
    // True when b is no corner of a hull between a and c: c is not left of the line from a to b.
    static bool rightTurn1(const JWRawPoint* a, const JWRawPoint* b, const JWRawPoint* c);
    static bool rightTurn2(const JWPoint* a, const JWPoint* b, const JWPoint* c);
};

}  // namespace jws

#endif  // JW_HULL_H
