// SPDX-License-Identifier: MIT
#ifndef JWCG_BENCH_CLIP_CASE_H
#define JWCG_BENCH_CLIP_CASE_H

#include <cstdint>
#include <string>
#include <vector>

#include "support/rings.h"

namespace bench {

/// A polygon with holes, as rivals want it that do not read rings by the even-odd rule.
struct ClipPolygon {
    jwtest::Ring outer;
    jwtest::Rings holes;
};
using ClipOperand = std::vector<ClipPolygon>;

struct ClipOperands {
    ClipOperand a, b;
};

/// The families' names, in the order of the table.
const std::vector<std::string>& clipCaseFamilies();

/// Pairs of operands with about n vertices each: one pair if n is large, many that differ if it is
/// small, so that no branch is learnt by heart. All polygons are valid. The same for the same n.
///
/// squares     two boxes that overlap, whatever n: what a call costs at least
/// star        two smooth outlines that cross in a few places
/// fuzz        two jittered copies of one outline, crossing everywhere
/// holes       outlines with many holes
/// board       the black fields of two chess boards, shifted by half a field
/// comb        combs whose backs and teeth share lines
/// identical   one outline twice
/// shared      one outline, a sixth of it moved away in B
std::vector<ClipOperands> makeClipCase(const std::string& family, int n);

}  // namespace bench

#endif  // JWCG_BENCH_CLIP_CASE_H
