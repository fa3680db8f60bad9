// SPDX-License-Identifier: MIT
//
// Geometries between this library and OGR.
#ifndef JW_FOUNDATION_OGR_CONVERT_H
#define JW_FOUNDATION_OGR_CONVERT_H

#include <ogr_geometry.h>

#include <memory>

#include "jw_geometry.h"

namespace jws::detail {

/// Copies a geometry of any OGR type. Rings are closed, envelopes up to date. Curves become
/// polylines (OGR's step, 4 degrees), triangles polygons, TINs and polyhedral surfaces
/// multi-polygons. Points keep z and m, others drop them. Empty rings of polygons are left out.
std::unique_ptr<JWGeometry> geometryFromOgr(const OGRGeometry& source);

/// Copies a geometry into OGR's classes for a layer that declares `target`: a single geometry
/// becomes a multi one where the layer wants that, a multi-geometry of one member a single one,
/// anything a collection in a layer of collections. Z and M of points are written where the layer
/// has them. Returns null when the geometry has no OGR form (arcs, Bézier curves, dynamic points,
/// polygons with holes whose outer ring is empty) or the layer cannot hold it.
std::unique_ptr<OGRGeometry> geometryToOgr(const JWGeometry& source, OGRwkbGeometryType target);

enumJWWKBGeometryType typeFromOgr(OGRwkbGeometryType type);
/// `type` with z and m as `like` has them.
inline OGRwkbGeometryType withDimensionsOf(OGRwkbGeometryType like, OGRwkbGeometryType type) {
    if (type == wkbNone) return type;
    return OGR_GT_SetModifier(wkbFlatten(type), OGR_GT_HasZ(like), OGR_GT_HasM(like));
}
OGRwkbGeometryType typeToOgr(enumJWWKBGeometryType type);

}  // namespace jws::detail

#endif  // JW_FOUNDATION_OGR_CONVERT_H
