// SPDX-License-Identifier: MIT
//
// The points that stand for a geometry: centres, inner points, vertices. All take single and
// multi-geometries of their kind with finite coordinates, and append nothing where there is no
// point.
#ifndef JW_CONVERT_POINTS_OF_H
#define JW_CONVERT_POINTS_OF_H

#include <vector>

#include "jw_geometry.h"

namespace jws::detail {

using Points = std::vector<JWRawPoint>;

void appendMean(const JWGeometry& points, Points& result);
/// The member nearest to the mean, the first of several.
void appendMiddleMember(const JWGeometry& points, Points& result);

/// The centre weighted by length.
void appendLineCentroid(const JWGeometry& lines, Points& result);
/// The point at half the length.
void appendMiddleOfLine(const JWGeometry& lines, Points& result);
/// The point at a length along a line that has one point at least.
JWRawPoint pointAtLength(const JWLineString& line, double length);

void appendRingCentroids(const JWGeometry& polygon, Points& result);
/// The centre of the whole area.
void appendAreaCentroid(const JWGeometry& polygon, Points& result);
/// The centre of the area if it lies inside, otherwise the middle of a widest stretch inside along
/// a horizontal line.
void appendPointInArea(const JWGeometry& polygon, Points& result);
/// The position is within by the even-odd rule, boundary not counted.
bool isWithinArea(const JWRawPoint& p, const JWGeometry& polygon);

/// Vertices 0, n, 2n, ... of each line, ring (without its closing point) or list of points, as far
/// as they lie `leastSpacing` from the one before.
void appendVertices(const JWGeometry& geometry, int everyNth, double leastSpacing, Points& result);

}  // namespace jws::detail

#endif  // JW_CONVERT_POINTS_OF_H
