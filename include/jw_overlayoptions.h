// SPDX-License-Identifier: MIT
//
// JWOverlayOptions: what a layer overlay can be told beyond its fixed signature.
#ifndef JW_OVERLAYOPTIONS_H
#define JW_OVERLAYOPTIONS_H

#include <string>

namespace jws {

/// Settings of a layer overlay. The defaults are those of the plain form.
struct JWOverlayOptions {
    /// For the operations that carry attributes of both layers (a pair of features within one):
    /// 0 attributes of A, then of B; 1 the two identifiers; 2 both identifiers, then A's, then B's
    /// attributes. Any other value acts as 0.
    int attributeMode = 0;
    /// Smallest absolute ring area kept, square layer units; negative and NaN keep every ring.
    double tolerance = 0;
    /// Features of A held at a time; 0 or less means all in one block.
    int blockSize = 0;
    /// Threads of the team; 0 or less means one per core, and there are never more than four per
    /// core or eight, whichever is more. The result is the same for any number.
    int threads = 1;
    /// Whether a result of several parts stays one feature; otherwise each part becomes one.
    bool multipart = true;
    /// Update: features of B stay as they are; otherwise they absorb the features of A that they
    /// overlap.
    bool keepBorders = true;
    /// Spatial join: features of A that meet no feature of B are written as well.
    bool keepUnmatched = true;
    /// Spatial join: a row for each pair that meets; otherwise one for each feature of A.
    bool rowPerPair = false;
    /// Computes the residual of the area identity that the operation obeys, see `JWLayerReport`.
    /// Every clip is checked by at most one more that gives the rest, and nothing is kept for it:
    /// it costs about as much again as the operation where features overlap, little where they do
    /// not. The spatial join has no such identity and is not checked.
    bool checkAreas = false;
    /// Declares the result as multi-polygons, because a piece may have several parts; otherwise it
    /// is declared as A is.
    bool promoteToMulti = false;
    /// Name of a real field that receives the area of each result feature, square layer units;
    /// empty for none.
    std::string areaField;
    /// Put in front of the names of fields that A and B both have; where one is empty, names that
    /// are taken get "_1", "_2", … behind them.
    std::string prefixA;
    std::string prefixB;
};

}  // namespace jws

#endif  // JW_OVERLAYOPTIONS_H
