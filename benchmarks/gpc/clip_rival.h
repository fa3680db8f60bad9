// SPDX-License-Identifier: MIT
//
// A contender of the clipping benchmark. Each rival's code is in one source.
#ifndef JWCG_BENCH_CLIP_RIVAL_H
#define JWCG_BENCH_CLIP_RIVAL_H

#include <memory>
#include <vector>

#include "gpc/clip_case.h"

namespace bench {

enum class ClipOp { Intersection, Union, Difference, Xor };

class ClipRival {
  public:
    virtual ~ClipRival() = default;
    /// Makes the rival's own geometries of the pairs. Not timed.
    virtual void load(const std::vector<ClipOperands>& pairs) = 0;
    /// Clips every pair and drops the results. Timed. Throws where the rival fails.
    virtual void run(ClipOp op) = 0;
    /// Clips every pair and returns the sum of the results' areas. Not timed.
    virtual double area(ClipOp op) = 0;
};

/// The engine behind the GPC interface.
std::unique_ptr<ClipRival> makeOursClip();
/// GEOS through its C interface (OverlayNG), operands as geometries already.
std::unique_ptr<ClipRival> makeGeosClip();
/// Clipper 6.4 on coordinates scaled to 30 bits, its faster range.
std::unique_ptr<ClipRival> makeClipperClip();
/// Boost.Geometry on multipolygons of doubles.
std::unique_ptr<ClipRival> makeBoostClip();
/// Not a rival but a floor: merely finds the crossings of A's edges with B's.
std::unique_ptr<ClipRival> makeGridFloor();

}  // namespace bench

#endif  // JWCG_BENCH_CLIP_RIVAL_H
