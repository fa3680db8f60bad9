// SPDX-License-Identifier: MIT
//
// What encloses the points of any input: one body for each family, behind the forms for points,
// geometries, feature classes and layers.
#ifndef JW_ANALYSIS_BOUNDING_SHAPE_H
#define JW_ANALYSIS_BOUNDING_SHAPE_H

#include "analysis/point_runs.h"

namespace jws::detail {

// The public forms after their input has come to runs of points. False, and the outputs as they
// were, where there is no answer.
bool hullForm(const PointRuns& points, JWRing* hull);
bool envelopForm(const PointRuns& points, JWEnvelop* envelop);
bool minimumCircleForm(const PointRuns& points, JWRawPoint& center, double* radius,
                       JWRing* outline);
bool boundingBallForm(const PointRuns& points, JWRawPoint& center, double* radius, JWRing* outline);
bool minimumAreaRectForm(const PointRuns& points, JWRing* rectangle);
bool minimumWidthRectForm(const PointRuns& points, JWRing* rectangle);

/// Centre and radius of a circle; length, width and direction (degrees, 0 to below 180,
/// counter-clockwise from the x axis) of a rectangle's longer side.
struct BoundingMeasures {
    double values[3] = {0, 0, 0};
};

/// A family as a polygon for a feature; `measures` may be null, and is filled for circles and
/// rectangles.
using BoundingShape = bool (*)(const PointRuns& points, JWRing* ring, BoundingMeasures* measures);

/// False also for points on one line, whose hull has no area, and for fewer than 4 points.
bool hullPolygon(const PointRuns& points, JWRing* ring, BoundingMeasures* measures);
/// The same for any number of points.
bool anyHullPolygon(const PointRuns& points, JWRing* ring, BoundingMeasures* measures);
/// Five points, counter-clockwise from the lower left. False also for a coordinate that is not
/// finite.
bool envelopPolygon(const PointRuns& points, JWRing* ring, BoundingMeasures* measures);
bool minimumCirclePolygon(const PointRuns& points, JWRing* ring, BoundingMeasures* measures);
bool boundingBallPolygon(const PointRuns& points, JWRing* ring, BoundingMeasures* measures);
bool minimumAreaRectPolygon(const PointRuns& points, JWRing* ring, BoundingMeasures* measures);
bool minimumWidthRectPolygon(const PointRuns& points, JWRing* ring, BoundingMeasures* measures);

}  // namespace jws::detail

#endif  // JW_ANALYSIS_BOUNDING_SHAPE_H
