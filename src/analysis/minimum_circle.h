// SPDX-License-Identifier: MIT
//
// Enclosing circles: the smallest one, and the fast approximate one.
#ifndef JW_ANALYSIS_MINIMUM_CIRCLE_H
#define JW_ANALYSIS_MINIMUM_CIRCLE_H

#include "analysis/point_runs.h"

namespace jws::detail {

struct Circle {
    JWRawPoint center;
    double radius;
};

/// The smallest circle around the points. False for fewer than 2 points, when a coordinate is not
/// finite, and when the radius is more than a number holds.
bool minimumCircle(const PointRuns& points, Circle& circle);

/// The bounding ball: starts from the extremes of the longer axis and grows to take in each point
/// in turn (J. Ritter, An efficient bounding sphere, 1990). False as above.
bool boundingBall(const PointRuns& points, Circle& ball);

/// The outline of 361 points, clockwise from angle 0; the ring is closed, its envelope up to date.
JWRing circleOutline(const Circle& circle);

}  // namespace jws::detail

#endif  // JW_ANALYSIS_MINIMUM_CIRCLE_H
