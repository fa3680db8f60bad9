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
    explicit LineSimplifier(const JWSimplifyOptions& options) : options_(options) {}

    /// The parameters are in range for the method.
    bool isUsable() const;
    /// Drops points in place. False, and nothing changed, when parameters are out of range, the
    /// method wants more points, or a coordinate is not finite.
    bool edit(std::vector<JWRawPoint>& points);

  private:
    std::size_t douglasPeucker(std::vector<JWRawPoint>& points);
    std::size_t reumannWitkam(std::vector<JWRawPoint>& points) const;
    std::size_t lang(std::vector<JWRawPoint>& points) const;
    std::size_t vertexReduction(std::vector<JWRawPoint>& points) const;
    std::size_t opheim(std::vector<JWRawPoint>& points) const;
    std::size_t nthPoint(std::vector<JWRawPoint>& points) const;
    std::size_t perpendicularDistance(std::vector<JWRawPoint>& points) const;

    JWSimplifyOptions options_;
    FarthestPoint farthest_;
    std::vector<std::size_t> kept_;
};

}  // namespace jws::detail

#endif  // JW_ANALYSIS_LINE_SIMPLIFIER_H
