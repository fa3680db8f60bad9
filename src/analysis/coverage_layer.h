// SPDX-License-Identifier: MIT
//
// `JWGeometrySimplicify::simplifyLayer` of a coverage: two walks over the layer, one for its
// borders, and one to write its features with them. The second finds in the layer's cache what that
// holds.
#ifndef JW_ANALYSIS_COVERAGE_LAYER_H
#define JW_ANALYSIS_COVERAGE_LAYER_H

#include "jw_geometrysimplicify.h"

namespace jws::detail {

int simplifyCoverage(JWFeatureLayer* input, JWFeatureLayer* output,
                     const JWSimplifyOptions& options, JWLayerReport* report);

}  // namespace jws::detail

#endif  // JW_ANALYSIS_COVERAGE_LAYER_H
