// SPDX-License-Identifier: MIT
#ifndef JW_CLIP_AREA_CUT_H
#define JW_CLIP_AREA_CUT_H

#include <vector>

#include "clip/line_index.h"
#include "jw_geometry.h"

namespace jws::detail {

/// Cuts the area of a polygon, read by the even-odd rule, along lines: of each face the outer ring,
/// then its holes. A polygon that is not divided comes back ring for ring, closed; one without a
/// ring of four points has no faces. Throws as `cutAlongLines` does.
std::vector<std::vector<JWRing>> cutPolygon(const JWPolygon& polygon, const LineIndex& lines);

}  // namespace jws::detail

#endif  // JW_CLIP_AREA_CUT_H
