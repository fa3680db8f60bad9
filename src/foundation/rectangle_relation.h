// SPDX-License-Identifier: MIT
//
// How a geometry lies to an axis-parallel rectangle, for layer filters. Both are closed sets:
// borders belong to them. Sides are decided exactly, so a touch is a touch.
#ifndef JW_FOUNDATION_RECTANGLE_RELATION_H
#define JW_FOUNDATION_RECTANGLE_RELATION_H

#include "jw_geometry.h"

namespace jws::detail {

/// True when geometry and rectangle have a point in common. Needs valid stored envelopes, as do the
/// other tests; empty geometries have no point. O(n).
bool meetsRectangle(const JWGeometry& geometry, const JWEnvelop& rectangle);

/// True when the geometry is not empty and no point of it lies outside the rectangle.
bool isWithinRectangle(const JWGeometry& geometry, const JWEnvelop& rectangle);

/// True when no point of the rectangle lies outside the geometry; of a collection, outside one of
/// its members. Only areas contain rectangles with an area. A rectangle without one is a point or a
/// segment: lines and points contain it when it is a point that they meet; segments are contained
/// by areas only.
bool containsRectangle(const JWGeometry& geometry, const JWEnvelop& rectangle);

/// The relation as a layer filter takes it: 1 equal, 2 disjoint, 6 the geometry contains the
/// rectangle, 7 it lies within, 3 to 5 and 8 the two meet. Empty geometries stand in no relation.
bool hasRelation(const JWGeometry& geometry, const JWEnvelop& rectangle,
                 enumJWSpatialRelation relation);

}  // namespace jws::detail

#endif  // JW_FOUNDATION_RECTANGLE_RELATION_H
