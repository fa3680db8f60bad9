// SPDX-License-Identifier: MIT
//
// Overlay of two polygon geometries, one body for the public classes and the layer operations.
// Operands are polygons and multipolygons; other geometries have no area here. Functions throw when
// memory runs out or the engine gives up; the public functions over them turn that into their
// failure values. Safe on any number of threads.
#ifndef JW_OVERLAY_GEOMETRY_OVERLAY_H
#define JW_OVERLAY_GEOMETRY_OVERLAY_H

#include <memory>
#include <vector>

#include "boolean/ring_clip.h"
#include "jw_geometry.h"

namespace jws::detail {

/// Where a piece of an overlay comes from.
enum OriginCode {
    OriginA = 0,       ///< from A only
    OriginB = 1,       ///< from B only; in an identity, the part common to A and B
    OriginMerged = 2,  ///< A and B in one
};

struct OverlayPiece {
    std::unique_ptr<JWGeometry> geometry;
    int origin;
};

using OverlayPieces = std::vector<OverlayPiece>;

/// A clip result as a geometry.
struct BuiltArea {
    std::unique_ptr<JWGeometry> geometry;  ///< null when no outer ring reaches the tolerance
    double area = 0;                       ///< that the contours enclose
    double dropped = 0;  ///< area of the outer rings below the tolerance minus that of such holes
};

/// Builds polygons from contours, without rings of an area below `tolerance`.
BuiltArea buildArea(const ClippedContours& contours, double tolerance);

/// Returns what A and B have in common, without rings of an area below `tolerance`; null when
/// nothing is left or the envelopes do not overlap.
std::unique_ptr<JWGeometry> intersect(const JWGeometry& a, const JWGeometry& b, double tolerance);

/// Returns A minus B; a copy of A when the envelopes do not overlap.
std::unique_ptr<JWGeometry> erase(const JWGeometry& a, const JWGeometry& b, double tolerance);

/// Returns A and B as one geometry.
std::unique_ptr<JWGeometry> unite(const JWGeometry& a, const JWGeometry& b, double tolerance);

/// Unites a list, neighbours first, then the results; null members are skipped. Null when nothing
/// is left. A single member is copied as it is.
std::unique_ptr<JWGeometry> uniteAll(const std::vector<const JWGeometry*>& geometries,
                                     double tolerance);

OverlayPieces symmetricalDifference(const JWGeometry& a, const JWGeometry& b, double tolerance);

/// The same in one clip: at most one geometry of A only, one of B only, and one of the polygons
/// that hold parts of both, which meet along an edge.
OverlayPieces symmetricalDifferenceAtOnce(const JWGeometry& a, const JWGeometry& b,
                                          double tolerance);

OverlayPieces identity(const JWGeometry& a, const JWGeometry& b, double tolerance);

OverlayPieces update(const JWGeometry& a, const JWGeometry& b, bool keepBorders, double tolerance);

/// Appends the pieces and their origins to a caller's lists and returns their number.
int handOver(OverlayPieces&& pieces, std::vector<JWGeometry*>& geometries,
             std::vector<int>& origins);

}  // namespace jws::detail

#endif  // JW_OVERLAY_GEOMETRY_OVERLAY_H
