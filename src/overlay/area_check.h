// SPDX-License-Identifier: MIT
//
// Whether the areas that an operation made of one feature add up. The parts of a feature inside and
// outside of others are computed by clips of their own, so that their sum comes out as the whole
// only if nothing was lost and nothing counted twice.
#ifndef JW_OVERLAY_AREA_CHECK_H
#define JW_OVERLAY_AREA_CHECK_H

#include <vector>

#include "overlay/area_union.h"

namespace jws::detail {

/// The area of what an operand encloses, resolved by the engine: right for rings that cross.
double resolvedArea(const Area& area);

/// Returns | |feature| − |feature in cutters| − outside |: what is lost or counted twice where
/// `outside` is the area of the feature outside the cutters.
double mismatchOfCut(const Area& feature, AreaUnion& cutters, double outside);

/// The pieces that a feature was cut into by others, kept to be checked.
class PieceCheck {
  public:
    explicit PieceCheck(const Area& feature) : m_feature(feature) {}
    void add(ClippedContours&& piece);
    /// What the pieces, overlaps counted once, and the rest outside the cutters differ by from the
    /// feature. `outside` may be negative: it is computed then, where the pieces leave a rest.
    double mismatch(AreaUnion& cutters, double outside);

  private:
    const Area& m_feature;
    std::vector<ClippedContours> m_pieces;
    double m_sum = 0;
};

}  // namespace jws::detail

#endif  // JW_OVERLAY_AREA_CHECK_H
