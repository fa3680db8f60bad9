// SPDX-License-Identifier: MIT
//
// Shoelace areas are right for simple rings; only where a sum does not come out are the rings
// resolved. Pieces of neighbours that do not overlap make up the feature together with its rest:
// mostly that holds, comes out at once, and is proof enough, since pieces and rest are clips of
// their own. Where it does not, each piece is checked by itself.
#include "overlay/area_check.h"

#include <algorithm>
#include <cmath>

#include "boolean/plain_area.h"
#include "overlay/geometry_overlay.h"
#include "overlay/layer_side.h"

namespace jws::detail {
namespace {

double shoelaceArea(const Area& area) {
    double sum = 0;
    for (const RingView& ring : area.rings()) {
        const double enclosed = areaOf(ring);
        sum += ring.hole == 0 ? enclosed : -enclosed;
    }
    return sum;
}

std::size_t pointsOf(const Area& area) {
    std::size_t sum = 0;
    for (const RingView& ring : area.rings()) sum += static_cast<std::size_t>(ring.count);
    return sum;
}

/// Sums of areas that differ by less agree: crossings are rounded to the last place of the largest
/// coordinate.
double roundingOf(const Area& feature, double whole) {
    const JWEnvelop& e = feature.envelop();
    const double size = std::max(std::max(std::fabs(e.minX), std::fabs(e.maxX)),
                                 std::max(std::fabs(e.minY), std::fabs(e.maxY)));
    return 1e-12 * whole + 0x1p-51 * size * (e.maxX - e.minX + e.maxY - e.minY);
}

/// What two parts of a feature miss it by.
double mismatchOf(const Area& feature, double inside, double outside) {
    const double whole = shoelaceArea(feature);
    const double difference = std::fabs(whole - inside - outside);
    if (difference <= roundingOf(feature, whole)) return difference;
    return std::min(difference, std::fabs(resolvedArea(feature) - inside - outside));
}

}  // namespace

double resolvedArea(const Area& area) {
    thread_local PlainAreaTest test;
    const RingViews& rings = area.rings();
    const bool isTestable = std::all_of(rings.begin(), rings.end(),
                                        [](const RingView& ring) { return ring.count >= 3; });
    const PlainArea known = isTestable ? test.test(rings) : PlainArea();
    if (!known.plain) return areaOf(clipRings(rings, {}, JWBooleanUnion));
    double twice = 0;
    for (std::size_t i = 0; i < rings.size(); ++i) {
        const bool interiorIsLeft = (known.interiorLeft >> i & 1u) != 0;
        twice += interiorIsLeft ? twiceArea(rings[i]) : -twiceArea(rings[i]);
    }
    return 0.5 * twice;
}

double mismatchOfCut(const Area& feature, AreaUnion& cutters, double outside) {
    const double inside =
        areaOf(clipRings(feature.rings(), cutters.rings(), JWBooleanIntersection));
    return mismatchOf(feature, inside, outside);
}

bool PieceCheck::addsUp(double outside, double& difference) const {
    difference = std::fabs(m_whole - m_sum - outside);
    return difference <= roundingOf(m_feature, m_whole);
}

double PieceCheck::mismatchOfPieces(Surroundings& around) const {
    const std::size_t ownPoints = pointsOf(m_feature);
    double sum = 0;
    around.restart();
    for (const double area : m_areas) {
        const Area& other = around.next()->area;
        if (area < 0) continue;
        const bool ownIsSmaller = ownPoints <= pointsOf(other);
        const Area& smaller = ownIsSmaller ? m_feature : other;
        AreaUnion larger(smaller.envelop());
        larger.add(ownIsSmaller ? other : m_feature);
        const double missed = mismatchOf(smaller, area, areaOf(eraseUnion(smaller, larger)));
        // Roundings would add up over a feature's pieces to more than they are of its area.
        if (missed > roundingOf(smaller, shoelaceArea(smaller))) sum += missed;
    }
    return sum;
}

}  // namespace jws::detail
