// SPDX-License-Identifier: MIT
//
// Which features an overlay of areas can take in.
#ifndef JW_OVERLAY_FEATURE_CHECK_H
#define JW_OVERLAY_FEATURE_CHECK_H

#include "jw_feature.h"

namespace jws::detail {

enum class AreaCheck { Usable, Empty, NotAnArea, NotFinite };

/// Tells whether the feature's geometry is an area with finite coordinates. Cost: one pass over the
/// coordinates.
AreaCheck checkArea(const JWFeature& feature);

/// The reason for people; null for usable and empty features.
const char* reasonOf(AreaCheck check);

/// |exterior| − Σ|holes| of a polygon, summed over the parts of a multi-polygon; 0 for other kinds.
double areaOf(const JWGeometry& geometry);

}  // namespace jws::detail

#endif  // JW_OVERLAY_FEATURE_CHECK_H
