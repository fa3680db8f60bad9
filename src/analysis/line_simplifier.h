// SPDX-License-Identifier: MIT
//
// The seven ways to drop points, on a list of points.
#ifndef JW_ANALYSIS_LINE_SIMPLIFIER_H
#define JW_ANALYSIS_LINE_SIMPLIFIER_H

#include <vector>

#include "foundation/farthest_point.h"
#include "jw_geometrysimplicify.h"

namespace jws::detail {

/// One method with its parameters and scratch memory; a thread uses its own.
class LineSimplifier {
  public:
    using Points = std::vector<JWRawPoint>;

    explicit LineSimplifier(const JWSimplifyOptions& options) : m_options(options) {}

    /// The parameters are in range for the method.
    bool isUsable() const;
    /// Puts the points that stay into `left`, another list. False when parameters are out of range,
    /// the method wants more points, or a coordinate is not finite.
    bool edit(const Points& points, Points& left);

  private:
    void douglasPeucker(const Points& points, Points& left);
    void reumannWitkam(const Points& points, Points& left) const;
    void lang(const Points& points, Points& left) const;
    void vertexReduction(const Points& points, Points& left) const;
    void opheim(const Points& points, Points& left) const;
    void nthPoint(const Points& points, Points& left) const;
    void perpendicularDistance(const Points& points, Points& left) const;

    JWSimplifyOptions m_options;
    FarthestPoint m_farthest;
    std::vector<std::size_t> m_kept;
};

}  // namespace jws::detail

#endif  // JW_ANALYSIS_LINE_SIMPLIFIER_H
