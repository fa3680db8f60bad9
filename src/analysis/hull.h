// SPDX-License-Identifier: MIT
//
// The convex hull of points, exact.
#ifndef JW_ANALYSIS_HULL_H
#define JW_ANALYSIS_HULL_H

#include <vector>

#include "analysis/point_runs.h"

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
