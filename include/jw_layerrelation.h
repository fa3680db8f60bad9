// SPDX-License-Identifier: MIT
//
// JWLayerRelation: how the features of two layers lie to one another.
#ifndef JW_LAYERRELATION_H
#define JW_LAYERRELATION_H

#include <cstdint>
#include <functional>
#include <string>

#include "jw_export.h"
#include "jw_feature.h"
#include "jw_relationmatrix.h"
#include "jw_report.h"

namespace jws {

/// The relation of one feature of a layer A to one of a layer B.
struct JWRelatedPair {
    std::int64_t fidA;
    std::int64_t fidB;
    JWRelationMatrix matrix;
};

/// Which pairs are wanted, and how they are worked out.
struct JWLayerRelationOptions {
    /// A name such as "contains" (see `JWRelationMatrix::predicateName`) or "intersects": only
    /// pairs for which it holds. Empty: all.
    std::string predicate;
    /// Only pairs whose matrix fits a pattern (see `JWRelationMatrix::matches`). Empty: all.
    std::string pattern;
    /// Features of A held at a time; 0 or less means all in one block.
    int blockSize = 4096;
    /// Threads; 0 or less means one per core. The result is the same for any number.
    int threads = 1;
};

/// Relations of the features of two layers, of any kinds of geometry. No state.
///
/// The pairs are those whose envelopes meet, borders included: all others are disjoint. They come
/// in the order of A, and of B for each feature of A. Features without a geometry are counted and
/// left out; those with a coordinate that is not finite are listed as rejected. A layer
/// may be related to itself.
///
/// Cost: one pass over each layer, then the pairs. The features of B that a block of A meets are
/// prepared and held; those of blocks before stay as long as all together take up about 200 MB, so
/// that each is prepared once as a rule and a pair costs what lies near it.
class JW_API JWLayerRelation {
  public:
    /// Receives the wanted pairs one by one, on the caller's thread; false stops the run.
    using Visitor = std::function<bool(const JWRelatedPair& pair)>;

    /// Calls `visit` for every wanted pair. Returns their number; −1 when a layer is missing,
    /// cannot be read, an option is unknown, or the run was stopped; −2 when the spatial references
    /// differ. The last error then tells why. `report` may be null; `pairs` in it counts all pairs
    /// whose envelopes meet.
    static std::int64_t relateLayers(JWFeatureLayer* a, JWFeatureLayer* b,
                                     const JWLayerRelationOptions& options, const Visitor& visit,
                                     JWLayerReport* report = nullptr);
    /// Writes the wanted pairs as rows without geometry: "fid_a" and "fid_b" (integers), "relation"
    /// (the names of the predicates that hold, with blanks between) and "matrix" (nine characters).
    /// All or nothing, in one transaction. Also −1 when the output cannot be written, −3 when it
    /// has fields already.
    static std::int64_t relateLayers(JWFeatureLayer* a, JWFeatureLayer* b, JWFeatureLayer* output,
                                     const JWLayerRelationOptions& options,
                                     JWLayerReport* report = nullptr);

    /// The names of the predicates that hold, with blanks between; "intersects" where none of them
    /// does, as for an area whose spike leaves another one that holds all else of it.
    static std::string relationNames(const JWRelationMatrix& matrix);
};

}  // namespace jws

#endif  // JW_LAYERRELATION_H
