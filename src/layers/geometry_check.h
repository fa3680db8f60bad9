// SPDX-License-Identifier: MIT
//
// Which features a layer operation can take in, and what is told about the others.
#ifndef JW_LAYERS_GEOMETRY_CHECK_H
#define JW_LAYERS_GEOMETRY_CHECK_H

#include <string>

#include "jw_feature.h"

namespace jws::detail {

/// Why a feature is missing whose result would have an infinite coordinate or NaN.
inline constexpr const char* kBeyondNumbers = "a coordinate grows beyond all numbers";

/// Why a feature is missing whose geometry the source has and its driver could not read.
inline constexpr const char* kUnreadGeometry = "the geometry cannot be read";

/// Kinds of geometry, to be joined with `|`; a multi-type goes with its single type.
enum GeometryKind : unsigned { PointKind = 1, LineKind = 2, AreaKind = 4, BagKind = 8 };
constexpr unsigned AnyKind = PointKind | LineKind | AreaKind | BagKind;

enum class GeometryCheck { Usable, Empty, Unread, WrongKind, NotFinite };

/// Tells whether a feature's geometry is of one of these kinds with finite coordinates. Cost: one
/// pass over the coordinates.
GeometryCheck checkGeometry(const JWFeature& feature, unsigned kinds);

/// The reason for people, such as "the geometry is a point, not a line or polygon"; empty for
/// usable and empty features.
std::string reasonOf(GeometryCheck check, const JWFeature& feature, unsigned kinds);

/// |exterior| − Σ|holes| of a polygon, summed over the parts of a multi-polygon; 0 for other kinds.
double areaOf(const JWGeometry& geometry);

}  // namespace jws::detail

#endif  // JW_LAYERS_GEOMETRY_CHECK_H
