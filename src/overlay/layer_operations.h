// SPDX-License-Identifier: MIT
//
// The layer operations: what each does with a feature and its surroundings, as passes for the
// driver.
#ifndef JW_OVERLAY_LAYER_OPERATIONS_H
#define JW_OVERLAY_LAYER_OPERATIONS_H

#include <cstdint>
#include <vector>

#include "jw_overlayoptions.h"
#include "overlay/layer_driver.h"

namespace jws::detail {

using Passes = std::vector<OverlayPass>;

/// `count`: number of features of the operand that the first pass walks over.
using MakePasses = Passes (*)(const JWOverlayOptions& options, std::int64_t count);

// Two layers.
Passes intersectPasses(const JWOverlayOptions& options, std::int64_t count);
Passes erasePasses(const JWOverlayOptions& options, std::int64_t count);
Passes identityPasses(const JWOverlayOptions& options, std::int64_t count);
Passes planarUnionPasses(const JWOverlayOptions& options, std::int64_t count);
Passes symmetricalDifferencePasses(const JWOverlayOptions& options, std::int64_t count);
Passes updatePasses(const JWOverlayOptions& options, std::int64_t count);
Passes spatialJoinPasses(const JWOverlayOptions& options, std::int64_t count);

// One operand on both sides.
/// The seed and what belongs to it, as `Emitter::noteCluster` was told; nothing where it was not.
void announceSeed(TextBatch& texts, const FeatureCourse& course);
/// Unites clusters of features that overlap: of two layers, and of one.
Passes clusterPasses(const JWOverlayOptions& options, std::int64_t count);
Passes clusterWithinPasses(const JWOverlayOptions& options, std::int64_t count);
/// What each feature has in common with those behind it.
Passes overlapPasses(const JWOverlayOptions& options, std::int64_t count);
/// The pieces into which the features cut one another, those in one feature only included.
Passes partitionPasses(const JWOverlayOptions& options, std::int64_t count);
/// The same without those in one feature only.
Passes overlapPiecesPasses(const JWOverlayOptions& options, std::int64_t count);

}  // namespace jws::detail

#endif  // JW_OVERLAY_LAYER_OPERATIONS_H
