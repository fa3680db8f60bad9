// SPDX-License-Identifier: MIT
#ifndef JW_GPC_WINDING_UNION_H
#define JW_GPC_WINDING_UNION_H

#include "gpc.h"

namespace jws::detail {

/// Unites any number of areas in one go, from the directed loops around them: the result is where
/// the loops together wind at least once counter-clockwise. Loops of different areas may cross,
/// touch and overlap; loops of one area must wind 0 or 1 time around every point. Result, errors
/// and guarantees are those of `gpc_polygon_clip`; hole flags are not read.
/// \param overlap receives the area covered more than once, counted once for each further cover,
///     measured on the cut edges and not on the result
void uniteWinding(const ::gpc_polygon& boundaries, ::gpc_polygon& result, double& overlap);

}  // namespace jws::detail

#endif  // JW_GPC_WINDING_UNION_H
