// SPDX-License-Identifier: MIT
//
// The smallest rectangles around points, in any direction.
#ifndef JW_ANALYSIS_BOUNDING_RECTANGLE_H
#define JW_ANALYSIS_BOUNDING_RECTANGLE_H

#include "analysis/point_runs.h"

namespace jws::detail {

/// What is as small as can be.
enum class RectangleMeasure { kArea, kWidth };

/// The corners of the smallest rectangle, counter-clockwise, closed: five points. Points on one
/// line give a flat one. Empty for fewer than two distinct points and when a coordinate, or one of
/// a corner, is not finite.
std::vector<JWRawPoint> boundingRectangle(const PointRuns& points, RectangleMeasure measure);

}  // namespace jws::detail

#endif  // JW_ANALYSIS_BOUNDING_RECTANGLE_H
