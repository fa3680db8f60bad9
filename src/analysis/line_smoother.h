// SPDX-License-Identifier: MIT
//
// The six ways to smooth, on a list of points.
#ifndef JW_ANALYSIS_LINE_SMOOTHER_H
#define JW_ANALYSIS_LINE_SMOOTHER_H

#include <vector>

#include "jw_geometrysmooth.h"

namespace jws::detail {

/// One method with its parameters; any number of threads may use it.
class LineSmoother {
  public:
    using Points = std::vector<JWRawPoint>;

    explicit LineSmoother(const JWSmoothOptions& options) : m_options(options) {}

    /// The parameters are in range for some line.
    bool isUsable() const;
    /// Puts the smoothed line into `smooth`, another list; huge coordinates may come out infinite
    /// or NaN. False when parameters are out of range for the points, they are too few or a
    /// coordinate is not finite. Throws TooManyPoints when the result would be too long.
    bool edit(const Points& points, Points& smooth) const;

  private:
    bool boyle(const Points& points, Points& smooth) const;
    bool slidingAveraging(const Points& points, Points& smooth) const;
    bool distanceWeighting(const Points& points, Points& smooth) const;
    bool chaiken(const Points& points, Points& smooth) const;
    bool hermite(const Points& points, Points& smooth) const;
    bool bezier(const Points& points, Points& smooth) const;

    JWSmoothOptions m_options;
};

}  // namespace jws::detail

#endif  // JW_ANALYSIS_LINE_SMOOTHER_H
