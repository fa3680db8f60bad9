// SPDX-License-Identifier: MIT
//
// The stated distance of geometries, as minima over their members: what the public names of
// JWGeometryNearest and its layer operations share. Where nothing can be measured there is no
// minimum.
#ifndef JW_ANALYSIS_NEAREST_GEOMETRY_DISTANCE_H
#define JW_ANALYSIS_NEAREST_GEOMETRY_DISTANCE_H

#include "analysis/nearest/area_distance.h"
#include "analysis/nearest/segment_lists.h"
#include "jw_geometry.h"

namespace jws::detail {

/// A line of one point counts as that point.
LastLeast pointToLines(const JWRawPoint& p, const JWGeometry& lines);
LastLeast pointToPoints(const JWRawPoint& p, const JWMultiPoint& points);
LastLeast pointToAreas(const JWRawPoint& p, const JWGeometry& areas);

LastLeast pointsToPoints(const JWMultiPoint& a, const JWMultiPoint& b);
LastLeast pointsToLines(const JWMultiPoint& points, const JWGeometry& lines);
/// Polygon by polygon, all points for each.
LastLeast pointsToAreas(const JWMultiPoint& points, const JWGeometry& areas);

/// From here on a line of one point has no segments.
LastLeast segmentToLines(const Segment& segment, const JWGeometry& lines);
/// Without the look at the output points.
LastLeast segmentToRing(const Segment& segment, const JWRing& ring);
LastLeast linesToLines(const JWGeometry& a, const JWGeometry& b);
/// Polygon by polygon, all segments for each.
LastLeast segmentsToAreas(const Segments& segments, const JWGeometry& areas);

/// Calls `visit(polygon)` for a polygon, or each one of a multi-polygon.
template <class Visit>
void everyPolygon(const JWGeometry& areas, const Visit& visit) {
    if (areas.getGeometryType() == JWGeometryPolygon) {
        visit(static_cast<const JWPolygon&>(areas));
    } else {
        for (const JWPolygon& polygon : static_cast<const JWMultiPolygon&>(areas).getMemberList())
            visit(polygon);
    }
}

/// The segments of a line string or multi-line string, in order.
Segments segmentsOf(const JWGeometry& lines);

}  // namespace jws::detail

#endif  // JW_ANALYSIS_NEAREST_GEOMETRY_DISTANCE_H
