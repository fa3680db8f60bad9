// SPDX-License-Identifier: MIT
//
// The driver that every layer overlay shares. It reads operand B once, puts its envelopes into an
// R-tree, reads operand A block by block, hands each feature of A with its candidates of B to the
// operation, and writes what the operation emits in the order of A. An operation is what it does to
// one feature and its candidates; everything else is here.
//
// Guarantees. The result is the same, bit for bit and in the same order, for any number of threads
// and any block size. Operands are read and results written by one thread at a time. Writing is one
// transaction: a run that fails or is stopped leaves nothing behind. Features that cannot be
// processed are listed in the report, never dropped in silence.
//
// Cost. One pass over A and over B; memory for one block of A and its results, the envelopes of B
// (32 bytes a feature, twice while the tree is packed) and B's bounded cache of decoded features.
#ifndef JW_OVERLAY_LAYER_DRIVER_H
#define JW_OVERLAY_LAYER_DRIVER_H

#include <functional>
#include <memory>

#include "foundation/parallel.h"
#include "jw_overlayoptions.h"
#include "jw_report.h"
#include "overlay/feature_io.h"
#include "overlay/result_schema.h"

namespace jws::detail {

/// The features of B whose envelopes meet that of the feature of A at hand, in the order of B.
class Candidates {
  public:
    virtual ~Candidates() = default;
    /// Steps to the next candidate; null at the end. The pointer is good until the next call.
    virtual const JWFeature* next() = 0;
};

/// Takes the pieces that an operation makes, in order.
class Emitter {
  public:
    virtual ~Emitter() = default;
    /// Adds a result feature; `a` and `b` say whose attributes it carries, either may be null.
    virtual void emit(std::unique_ptr<JWGeometry> geometry, const JWFeature* a,
                      const JWFeature* b) = 0;
    /// Puts the feature of A on the list of those not processed: it and `b` could not be overlaid.
    virtual void reject(const JWFeature& b, const char* reason) = 0;
};

/// What an overlay does to one feature of A. Runs on many threads at once.
using FeatureOperation =
    std::function<void(const JWFeature& a, Candidates& candidates, Emitter& emitter)>;

/// Runs `operation` over all of `a`. Returns the number of features written. Throws LayerFailure
/// after a failed read or write and when the run was stopped; nothing is written then.
std::int64_t runLayerOverlay(FeatureInput& a, FeatureInput& b, FeatureOutput& output,
                             const FeatureOperation& operation, const JWOverlayOptions& options,
                             JWLayerReport& report);

}  // namespace jws::detail

#endif  // JW_OVERLAY_LAYER_DRIVER_H
