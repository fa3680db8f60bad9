// SPDX-License-Identifier: MIT
//
// The six ways to smooth, on a list of points.
#ifndef JW_ANALYSIS_LINE_SMOOTHER_H
#define JW_ANALYSIS_LINE_SMOOTHER_H

#include <vector>

#include "jw_geometrysmooth.h"

namespace jws::detail {

/// One method with its parameters and scratch memory; a thread uses its own.
class LineSmoother {
  public:
    explicit LineSmoother(const JWSmoothOptions& options) : options_(options) {}

    /// The parameters are in range for some line.
    bool isUsable() const;
    /// Smooths points in place; huge ones may come out infinite or NaN. False, and nothing changed,
    /// when parameters are out of range for them, they are too few or a coordinate is not finite.
    /// Throws TooManyPoints, and changes nothing, when the result would be too long.
    bool edit(std::vector<JWRawPoint>& points);

  private:
    bool boyle(std::vector<JWRawPoint>& points) const;
    bool slidingAveraging(std::vector<JWRawPoint>& points);
    bool distanceWeighting(std::vector<JWRawPoint>& points);
    bool chaiken(std::vector<JWRawPoint>& points);
    bool hermite(std::vector<JWRawPoint>& points);
    bool bezier(std::vector<JWRawPoint>& points);

    JWSmoothOptions options_;
    std::vector<JWRawPoint> result_;
};

}  // namespace jws::detail

#endif  // JW_ANALYSIS_LINE_SMOOTHER_H
