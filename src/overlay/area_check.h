// SPDX-License-Identifier: MIT
//
// Whether the areas that an operation made of one feature add up. Every clip is checked by another
// one that gives the rest: an intersection by a difference, a difference by an intersection. Their
// sum comes out as the whole only if nothing was lost and nothing counted twice, and the check
// costs about what it checks, however features overlap.
#ifndef JW_OVERLAY_AREA_CHECK_H
#define JW_OVERLAY_AREA_CHECK_H

#include <vector>

#include "boolean/area_union.h"

namespace jws::detail {

class Surroundings;

/// The area of what an operand encloses, resolved by the engine: right for rings that cross.
double resolvedArea(const Area& area);

/// Returns | |feature| − |feature in cutters| − outside |: what is lost or counted twice where
/// `outside` is the area of the feature outside the cutters.
double mismatchOfCut(const Area& feature, AreaUnion& cutters, double outside);

/// The pieces that a feature was cut into by those around it, one after the other: their areas.
class PieceCheck {
  public:
    /// `whole`: the area that the feature encloses.
    PieceCheck(const Area& feature, double whole) : m_feature(feature), m_whole(whole) {}
    /// Takes what the next neighbour has in common with the feature.
    void add(double area) {
        m_areas.push_back(area);
        m_sum += area;
    }
    /// Passes over the next neighbour: it was not clipped.
    void skip() { m_areas.push_back(-1); }

    /// The pieces and `outside`, the area of the feature outside of all of them, make up the
    /// feature, as they do unless neighbours overlap. `difference` receives what they miss it by.
    bool addsUp(double outside, double& difference) const;
    /// What the pieces miss, each against the rest of the smaller of the two features that it is
    /// common to. Walks over the neighbours once more.
    double mismatchOfPieces(Surroundings& around) const;

  private:
    const Area& m_feature;
    double m_whole;
    double m_sum = 0;
    std::vector<double> m_areas;  ///< by neighbour; negative for none
};

}  // namespace jws::detail

#endif  // JW_OVERLAY_AREA_CHECK_H
