// SPDX-License-Identifier: MIT
//
// Where one point lies in a line or polygon, by one walk over the points and without any memory.
#ifndef JW_RELATION_POINT_PLACE_H
#define JW_RELATION_POINT_PLACE_H

#include "jw_geometry.h"
#include "relation/relation_matrix.h"

namespace jws::detail {

struct PointPlace {
    Location location = kExterior;
    bool onExteriorRing = false;  ///< on an edge of a polygon's ring 0, whatever the location
};

/// The place of a point in a line string. `kExterior` for a line with a coordinate that is not
/// finite, as for an empty one.
PointPlace placeInLine(const JWRawPoint& p, const JWLineString& line);

/// The place of a point in a polygon, by the even-odd rule over all rings.
PointPlace placeInPolygon(const JWRawPoint& p, const JWPolygon& polygon);

}  // namespace jws::detail

#endif  // JW_RELATION_POINT_PLACE_H
