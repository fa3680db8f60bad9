// SPDX-License-Identifier: MIT
#ifndef JW_GPC_PIXEL_H
#define JW_GPC_PIXEL_H

#include "gpc/exact.h"

namespace jws::gpc {

/// The pixels of a grid: squares as wide as its step around each of its points, with their left
/// and lower sides, so that they fill the plane and share nothing. All answers are exact.

/// Returns the middle of the pixel that `p` lies in.
Point pixelOf(const Point& p, const CrossingGrid& grid);

/// Tells whether the segment ab has a point in the square of side `step` around `middle`, which
/// need not be a point of the grid.
bool entersPixel(Point a, Point b, const Point& middle, double step);

}  // namespace jws::gpc

#endif  // JW_GPC_PIXEL_H
