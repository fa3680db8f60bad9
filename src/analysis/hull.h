// SPDX-License-Identifier: MIT
//
// The convex hull of points, exact.
#ifndef JW_ANALYSIS_HULL_H
#define JW_ANALYSIS_HULL_H

#include <algorithm>
#include <cmath>
#include <limits>
#include <vector>

#include "analysis/point_runs.h"
#include "foundation/orientation.h"
#include "jw_hull.h"

namespace jws {

inline double JWHull::isLeft(const JWRawPoint& P0, const JWRawPoint& P1, const JWRawPoint& P2) {
    const double value = (P1.x - P0.x) * (P2.y - P0.y) - (P2.x - P0.x) * (P1.y - P0.y);
    const int sign = orientationSign(P1, P2, P0);
    if (sign > 1) return value;  // beyond all numbers, or NaN
    return sign * std::max(std::fabs(value), std::numeric_limits<double>::denorm_min());
}

}  // namespace jws

namespace jws::detail {

/// The corners of the convex hull, counter-clockwise from the lexicographically smallest, which is
/// repeated at the end; no corner lies on the line of its neighbours. Points on one line give the
/// two extremes and the first again, equal points that point twice. Empty for no points and when a
/// coordinate is not finite.
std::vector<JWRawPoint> convexHull(const PointRuns& points);

/// The points that may be corners of the hull, in the order of the input, its first point first:
/// all of few points, of many those outside an inner octagon. Points that are not finite are among
/// them.
std::vector<JWRawPoint> outerPoints(const PointRuns& points);

/// The largest absolute coordinate; NaN when a coordinate is not finite.
double magnitude(const std::vector<JWRawPoint>& points);

/// The power of two that brings coordinates of this magnitude to where squares and products neither
/// overflow nor vanish; 1 for all but absurd ones.
double safeScale(double magnitude);

}  // namespace jws::detail

#endif  // JW_ANALYSIS_HULL_H
