// SPDX-License-Identifier: MIT
//
// The driver that every layer overlay shares. It puts the envelopes of operand B into an R-tree,
// reads operand A block by block, hands each feature of A with what surrounds it in B to the
// operation, and writes what the operation emits in the order of A. An operation that has something
// to say about each feature of B as well makes a second pass with the sides swapped. An operation
// within one layer, or over two layers joined to one operand, has the same operand on both sides.
// An operation is what it does to one feature and its surroundings; everything else is here.
//
// Guarantees. The result is the same, bit for bit and in the same order, for any number of threads
// and any block size. Operands are read and results written by one thread at a time. Writing is one
// transaction over all passes: a run that fails or is stopped leaves nothing behind. Features that
// cannot be processed are listed in the report, never dropped in silence.
//
// Cost. One pass over A and over B, and one more of each operand that is walked a second time;
// memory for what waits to be written (ordered_work.h), the envelopes of the operands (32 bytes a
// feature, twice while a tree is packed) and the layers' bounded caches of decoded features.
#ifndef JW_OVERLAY_LAYER_DRIVER_H
#define JW_OVERLAY_LAYER_DRIVER_H

#include <algorithm>
#include <climits>
#include <cstdint>
#include <functional>
#include <vector>

#include "foundation/text_batch.h"
#include "jw_overlayoptions.h"
#include "jw_report.h"
#include "layers/feature_io.h"
#include "layers/result_schema.h"
#include "overlay/layer_side.h"
#include "overlay/overlay_slot.h"

namespace jws::detail {

/// What an overlay does to one feature and the features of the other operand around it. Runs on
/// many threads at once. A ClipFailure that it throws puts the feature on the list of those that
/// were not processed in full.
using FeatureOperation = std::function<void(const OverlayFeature&, Surroundings&, Emitter&)>;

/// A number as messages show it.
inline int shown(std::int64_t number) {
    return static_cast<int>(std::min<std::int64_t>(number, INT_MAX));
}

/// What console texts tell of one feature.
struct FeatureCourse {
    std::int64_t position;
    std::int64_t place;    ///< in its block, from 1
    std::int64_t inBlock;  ///< features of the block
    std::int64_t inLayer;  ///< features of the operand
    const Slot& slot;
};

/// Its place, its candidates and its results.
void announceFeature(TextBatch& texts, const FeatureCourse& course);

/// Console texts of one block, besides that of its filter. `end` stands in for the text that says
/// what a block wrote; null for that one.
struct BlockTexts {
    /// False for a walk over blocks that were announced before.
    bool block = true;
    void (*start)(int block) = nullptr;
    void (*end)(int block, int written, int features) = nullptr;
    /// Called for each feature in order; may be null.
    void (*feature)(TextBatch& texts, const FeatureCourse& course) = announceFeature;
};

/// One walk over an operand.
struct OverlayPass {
    bool overB;  ///< walks over B with A around it
    FeatureOperation operation;
    BlockTexts texts = {};
    /// Called once before the walk, when the passes before are over; may be empty.
    std::function<void(LayerSide& walked)> prepare = {};
    /// Called once after the walk with the number of features it wrote, and of those that came out
    /// as they were; may be null.
    void (*summary)(int written, int copied) = nullptr;
    /// Features without a geometry become results without one, with the attributes of A.
    bool keepsEmpty = false;
    /// The operation looks at what is around a feature.
    bool searches = true;
};

struct OverlayJob {
    FeatureInput& a;
    FeatureInput& b;  ///< may be `a` itself
    FeatureOutput& output;
    ResultSchema schema;
    std::vector<OverlayPass> passes;
};

/// Runs the passes. Returns the number of features written. Throws LayerFailure after a failed read
/// or write and when the run was stopped; nothing is written then.
std::int64_t runLayerOverlay(OverlayJob& job, const JWOverlayOptions& options,
                             JWLayerReport& report);

}  // namespace jws::detail

#endif  // JW_OVERLAY_LAYER_DRIVER_H
