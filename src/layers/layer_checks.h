// SPDX-License-Identifier: MIT
//
// The checks that every layer operation makes before it reads a feature, with their codes:
// −1 a layer is missing or the output cannot be written, −3 the output has fields already,
// −2 the spatial references differ.
#ifndef JW_LAYERS_LAYER_CHECKS_H
#define JW_LAYERS_LAYER_CHECKS_H

#include <algorithm>
#include <climits>
#include <string>
#include <utility>
#include <vector>

#include "foundation/api_guard.h"
#include "jw_feature.h"
#include "jw_report.h"
#include "layers/feature_io.h"

namespace jws::detail {

/// A layer as messages name it: its data source and its name.
std::string titleOf(const JWFeatureLayer& layer);

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

/// Runs `body(account)`, which returns the number of features written, as a public function does:
/// −1 with the last error set for whatever it throws, the account in `report` (may be null) either
/// way.
template <class Body>
int accounted(const char* function, JWLayerReport* report, Body&& body) {
    JWLayerReport account;
    int result = -1;
    try {
        const std::int64_t written = body(account);
        result = static_cast<int>(std::min<std::int64_t>(written, INT_MAX));
        reportRejected(account.rejected);
    } catch (const LayerFailure& failure) {
        JWReport::setError(failure.error.kind, failure.error.text, failure.error.feature);
    } catch (...) {
        keepCurrentException(function);
    }
    if (report != nullptr) *report = std::move(account);
    return result;
}

/// The same after the checks of two inputs, or of one named twice, and an output; answers their
/// codes.
template <class Body>
int accountedLayers(const char* function, JWFeatureLayer* a, JWFeatureLayer* b,
                    JWFeatureLayer* output, JWLayerReport* report, Body&& body) {
    return guarded(function, -1, [&] {
        JWReport::clearError();
        if (report != nullptr) *report = JWLayerReport();
        const int refused = checkOverlayLayers(a, b, output);
        return refused != 0 ? refused : accounted(function, report, body);
    });
}

/// Judges the residual of a run whose areas were checked: a warning above 1e-9 of `input`, the area
/// of the features that the residual is about.
void judge(JWLayerReport& report, double input);

}  // namespace jws::detail

#endif  // JW_LAYERS_LAYER_CHECKS_H
