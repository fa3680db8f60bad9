// SPDX-License-Identifier: MIT
//
// Result features between the worker that makes them and the writing of them, in order.
#ifndef JW_LAYERS_PENDING_RESULT_H
#define JW_LAYERS_PENDING_RESULT_H

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "layers/feature_io.h"

namespace jws::detail {

/// A result feature that waits for its turn.
struct PendingResult {
    std::unique_ptr<JWFeature> feature;
    std::shared_ptr<JWFeatureRecord> record;  ///< what the output prepared of it; may be null
    double area = 0;
    std::int64_t vertices = 0;
    bool isEmpty = false;   ///< it has no geometry
    std::string lostField;  ///< name of a field whose value the result cannot hold
};

/// Has the output prepare results that are about to be written, and returns their number.
std::size_t prepareResults(const FeatureOutput& output, std::vector<PendingResult>& results);

/// Writes a result and accounts for it: area and vertices, a lost value, a refusal, under the
/// feature `fid` of `input` that it comes from. Throws LayerFailure when the output cannot go on.
void writeResult(FeatureOutput& output, PendingResult& result, const FeatureInput& input,
                 std::int64_t fid, JWLayerReport& report);

}  // namespace jws::detail

#endif  // JW_LAYERS_PENDING_RESULT_H
