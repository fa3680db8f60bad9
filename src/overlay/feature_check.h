// SPDX-License-Identifier: MIT
//
// Which features an overlay of areas can take in.
#ifndef JW_OVERLAY_FEATURE_CHECK_H
#define JW_OVERLAY_FEATURE_CHECK_H

#include "layers/geometry_check.h"

namespace jws::detail {

using AreaCheck = GeometryCheck;

/// Tells whether the feature's geometry is an area with finite coordinates. Cost: one pass over the
/// coordinates.
inline AreaCheck checkArea(const JWFeature& feature) { return checkGeometry(feature, AreaKind); }

/// The reason for people; null for usable and empty features.
const char* reasonOf(AreaCheck check);

}  // namespace jws::detail

#endif  // JW_OVERLAY_FEATURE_CHECK_H
