// SPDX-License-Identifier: MIT
#ifndef JW_GPC_CROSSING_H
#define JW_GPC_CROSSING_H

#include "gpc/exact.h"

namespace jws::gpc {

/// Returns the point of the grid nearest to where the segments ab and cd, which cross properly,
/// meet: the middle of the pixel (pixel.h) that holds the crossing. Exact, so that the order of the
/// segments and their directions do not matter.
Point crossingPixel(const Point& a, const Point& b, const Point& c, const Point& d,
                    const CrossingGrid& grid);

/// The same, kept within the boxes of both segments; of two segments along the axes, where they
/// meet, on the grid or not.
Point crossingPoint(const Point& a, const Point& b, const Point& c, const Point& d,
                    const CrossingGrid& grid);

}  // namespace jws::gpc

#endif  // JW_GPC_CROSSING_H
