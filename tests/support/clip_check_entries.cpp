// SPDX-License-Identifier: MIT
//
// The entries beside the GPC interface must answer as it does.
#include <algorithm>
#include <cmath>

#include "support/clip_check.h"
#include "support/contour_check.h"
#include "support/engine_call.h"

namespace jwtest {
namespace {

constexpr std::size_t kMostRings = 40;  // united one after the other, for comparison

Miss checkUnionOfRings(const ClipCase& c, RandomRings& random) {
    std::vector<Rings> single;
    for (const Rings* operand : {&c.pair.a, &c.pair.b}) {
        for (const Ring& ring : *operand) single.push_back({ring});
    }
    if (single.size() > kMostRings) return {};
    const ClipResult together = uniteAll(single);
    const std::string fault = contourFault(together);
    if (!fault.empty()) return {"union of rings", fault};
    ClipResult folded;
    for (const Rings& ring : single) folded = clip(GPC_UNION, folded.contours, ring);
    const double allowed = c.tolerance * static_cast<double>(single.size() + 1);
    if (std::fabs(together.area() - folded.area()) > allowed) {
        return {"union of rings", "not the area of pairwise union"};
    }
    std::reverse(single.begin(), single.end());
    for (Rings& ring : single) ring = random.shuffled(ring);
    if (!sameSet(uniteAll(single), together)) return {"union of rings", "depends on the order"};
    return {};
}

}  // namespace

Miss checkEntries(const ClipCase& c, RandomRings& random) {
    for (int op = 0; op < 4; ++op) {
        for (int which = 1; which <= 3; ++which) {
            if (clipPrepared(kClipOps[op], c.pair.a, c.pair.b, which) == c.of[op]) continue;
            return {kClipNames[op], "a prepared operand changes the result"};
        }
    }
    const ClipResult both = uniteAll({c.pair.a, c.pair.b});
    if (c.apart(GPC_UNION, both) > c.tolerance) {
        return c.compare(GPC_UNION, both, "uniting both at once");
    }
    return checkUnionOfRings(c, random);
}

}  // namespace jwtest
