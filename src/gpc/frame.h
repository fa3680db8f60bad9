// SPDX-License-Identifier: MIT
#ifndef JW_GPC_FRAME_H
#define JW_GPC_FRAME_H

#include "gpc/contour_set.h"

namespace jws::gpc {

/// Brings both axes to one magnitude, so that each is rounded by its own last place, and near one
/// where products would overflow; and back.
struct Frame {
    Scale to;
    Scale from;
    int exponent = 0;   ///< scaled coordinates are below 2^exponent
    double aspect = 1;  ///< by how much y is scaled more than x

    explicit Frame(const Box& box);
};

}  // namespace jws::gpc

#endif  // JW_GPC_FRAME_H
