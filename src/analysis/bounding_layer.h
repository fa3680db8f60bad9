// SPDX-License-Identifier: MIT
//
// Bounding geometries of a layer: one for each feature, or one around all.
//
// What encloses a whole layer is what encloses the hull of its points, and the hull of many points
// is that of the hulls of some of them at a time. So a layer is read once, and memory holds one
// block, the corners of the hull so far and a million points beside them. Hulls are exact, so the
// answer does not depend on where the reading stops to reduce the points.
#ifndef JW_ANALYSIS_BOUNDING_LAYER_H
#define JW_ANALYSIS_BOUNDING_LAYER_H

#include "jw_geometryminimumbounding.h"

namespace jws::detail {

int boundLayer(JWFeatureLayer* input, JWFeatureLayer* output, const JWBoundingOptions& options,
               JWLayerReport* report);

}  // namespace jws::detail

#endif  // JW_ANALYSIS_BOUNDING_LAYER_H
