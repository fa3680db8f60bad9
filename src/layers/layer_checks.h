// SPDX-License-Identifier: MIT
//
// The checks that every layer operation makes before it reads a feature, with their codes:
// −1 a layer is missing or the output cannot be written, −3 the output has fields already,
// −2 the spatial references differ.
#ifndef JW_LAYERS_LAYER_CHECKS_H
#define JW_LAYERS_LAYER_CHECKS_H

#include <vector>

#include "jw_feature.h"
#include "jw_report.h"

namespace jws::detail {

/// Checks in the order −1, −3, −2. Returns 0 when the overlay may run; the last error is set
/// otherwise.
int checkOverlayLayers(const JWFeatureLayer* a, const JWFeatureLayer* b,
                       const JWFeatureLayer* output);

/// Sets the last error and returns false when the two references differ; both may be null.
bool checkReferences(const JWSpatialReference* a, const char* nameA, const JWSpatialReference* b,
                     const char* nameB);

/// Sets the last error after a run to the end: the first feature that is missing from the result,
/// if there is one. It stands in for the report where the caller has none.
void reportRejected(const std::vector<JWRejectedFeature>& rejected);

/// Judges the residual of a run whose areas were checked: a warning above 1e-9 of the input area.
void judge(JWLayerReport& report);

}  // namespace jws::detail

#endif  // JW_LAYERS_LAYER_CHECKS_H
