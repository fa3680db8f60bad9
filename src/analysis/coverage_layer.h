// SPDX-License-Identifier: MIT
//
// `JWGeometrySimplicify::simplifyLayer` of a coverage: the layer is read twice, once for its
// borders, and once to write its features with them.
#ifndef JW_ANALYSIS_COVERAGE_LAYER_H
#define JW_ANALYSIS_COVERAGE_LAYER_H

#include "jw_geometrysimplicify.h"

namespace jws::detail {

int simplifyCoverage(JWFeatureLayer* input, JWFeatureLayer* output,
                     const JWSimplifyOptions& options, JWLayerReport* report);

}  // namespace jws::detail

#endif  // JW_ANALYSIS_COVERAGE_LAYER_H
