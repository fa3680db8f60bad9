// SPDX-License-Identifier: MIT
//
// JWOverlayOptions: what a layer overlay can be told beyond its fixed signature.
#ifndef JW_OVERLAYOPTIONS_H
#define JW_OVERLAYOPTIONS_H

#include <string>

namespace jws {

/// Settings of a layer overlay. The defaults are those of the plain form.
struct JWOverlayOptions {
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
    /// Declares the result as multi-polygons, because a piece may have several parts; otherwise it
    /// is declared as A is.
    bool promoteToMulti = false;
    /// Name of a real field that receives the area of each result feature, square layer units;
    /// empty for none.
    std::string areaField;
};

}  // namespace jws

#endif  // JW_OVERLAYOPTIONS_H
