// SPDX-License-Identifier: MIT
//
// JWHull: the convex hull of a list of points.
#ifndef JW_HULL_H
#define JW_HULL_H

#include <vector>

#include "jw_export.h"
#include "jw_geometry.h"

namespace jws {

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
};

}  // namespace jws

#endif  // JW_HULL_H
