// SPDX-License-Identifier: MIT
//
// The course of a conversion of layers as a public function: the checks, the run, the account. An
// output may have the fields of the results already, from a conversion before; results then come
// behind the features it has.
#ifndef JW_CONVERT_CONVERSION_RUN_H
#define JW_CONVERT_CONVERSION_RUN_H

#include <functional>

#include "jw_report.h"
#include "layers/feature_io.h"

namespace jws::detail {

/// Runs `body(input, output, account)`, which returns the number of features written. Returns that;
/// -1 with the last error set for what it throws and when a layer is missing, is input and output
/// at once or not open for writing; -3 when the output has other fields than the body asks for.
int convertLayers(
    const char* function, JWFeatureLayer* in, JWFeatureLayer* out, JWLayerReport* report,
    const std::function<std::int64_t(FeatureInput&, FeatureOutput&, JWLayerReport&)>& body);

}  // namespace jws::detail

#endif  // JW_CONVERT_CONVERSION_RUN_H
