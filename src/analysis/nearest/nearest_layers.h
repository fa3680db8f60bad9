// SPDX-License-Identifier: MIT
//
// The driver of nearest-feature operations over two layers: targets are held in memory, sources are
// read block by block, answered by the team and written in their order as lines of two points.
#ifndef JW_ANALYSIS_NEAREST_NEAREST_LAYERS_H
#define JW_ANALYSIS_NEAREST_NEAREST_LAYERS_H

#include <string>

#include "analysis/nearest/nearest_method.h"
#include "jw_geometrynearest.h"
#include "layers/feature_io.h"

namespace jws::detail {

/// The fields of the result, which come behind those that it has.
struct NearestFields {
    std::string source, target, length;
    bool ranks = false;  ///< and "rank", 1 for the nearest target
};

/// A run with its operands; a value for one run.
struct NearestJob {
    FeatureInput& source;
    FeatureInput& target;
    FeatureOutput& output;
    NearestMethod& method;
    NearestFields fields;
    int firstField = 0;  ///< how many fields the output has already
    int threads = 1;
    std::int64_t blockSize = 0;  ///< sources held at a time; 0 or less for a suitable number
};

/// Runs a job and returns the number of features written. Throws LayerFailure after a failed read
/// or write, when the run was stopped, and, before fields are created, when a layer has no features
/// with a geometry.
std::int64_t runNearest(NearestJob& job, JWLayerReport& report);

/// The features of a list that a method takes, by a worker of the team each: appends to `pairs`.
void findNearestPairs(const JWFeatureClass& source, const JWFeatureClass& target,
                      NearestMethod& method, int threads, std::vector<JWNearestPair>& pairs);

}  // namespace jws::detail

#endif  // JW_ANALYSIS_NEAREST_NEAREST_LAYERS_H
