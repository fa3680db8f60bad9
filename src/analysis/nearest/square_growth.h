// SPDX-License-Identifier: MIT
//
// The growing square of the established search: the first one that meets a target's rectangle.
//
// Stated is a loop that adds a step to r and searches, until something is found or r reaches the
// larger side of the extent plus 1. The searches before the last one find nothing, so they need not
// be made: the largest axis distance to a target's rectangle tells about where the loop ends, and
// two or three searches around there settle which square is the first, since each holds the one
// before; where rounding makes many squares one, halving does. The radii are those that the
// additions give, rounding included; beyond a million of them (an extent of a few millionths of a
// unit) a product stands for the sum.
#ifndef JW_ANALYSIS_NEAREST_SQUARE_GROWTH_H
#define JW_ANALYSIS_NEAREST_SQUARE_GROWTH_H

#include <vector>

#include "trees/packed_tree.h"

namespace jws::detail {

/// Where a search starts: the middle of a source and how much larger than r its square is.
struct SquareStart {
    JWRawPoint centre;
    double base;     ///< half the larger side of the source
    double outside;  ///< how far it lies outside of the targets' extent
};

class SquareGrowth {
  public:
    /// `rectangles` are those of the targets, `tree` is over them; both must outlive this.
    SquareGrowth(const std::vector<JWEnvelop>& rectangles, const PackedTree& tree,
                 const JWEnvelop& extent, double divisor, bool startsAtStep);

    SquareStart startAt(const JWRawPoint& point) const;
    SquareStart startAt(const JWEnvelop& source) const;

    /// Stores the first square that meets a rectangle; false when none does.
    bool firstSquare(const SquareStart& start, JWEnvelop& square) const;

  private:
    double outsideOf(const JWEnvelop& source) const;
    double radius(double k) const;
    JWEnvelop squareAt(const SquareStart& start, double k) const;
    bool meetsAny(const JWEnvelop& square) const;
    double axisDistance(const JWRawPoint& centre) const;

    const std::vector<JWEnvelop>& m_rectangles;
    const PackedTree& m_tree;
    JWEnvelop m_extent;
    double m_step;
    double m_first;               ///< the first radius
    double m_end;                 ///< radii stay below it
    std::vector<double> m_radii;  ///< as repeated addition gives them, a million at most
    double m_count;               ///< how many radii there are below the end
};

}  // namespace jws::detail

#endif  // JW_ANALYSIS_NEAREST_SQUARE_GROWTH_H
