// SPDX-License-Identifier: MIT
//
// Shoelace areas are right for simple rings, and sums of pieces where the cutters do not overlap:
// mostly both hold, the sum comes out at once, and that is proof enough, since pieces and rest are
// independent clips. Only where it does not is the dear way taken: the feature's rings resolved,
// the pieces united.
#include "overlay/area_check.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "overlay/geometry_overlay.h"

namespace jws::detail {
namespace {

/// Of the whole: sums that differ by less agree.
constexpr double kRounding = 1e-12;

double shoelaceArea(const Area& area) {
    double sum = 0;
    for (const RingView& ring : area.rings()) {
        const double enclosed = areaOf(ring);
        sum += ring.hole == 0 ? enclosed : -enclosed;
    }
    return sum;
}

}  // namespace

double resolvedArea(const Area& area) {
    return areaOf(clipRings(area.rings(), {}, JWBooleanUnion));
}

double mismatchOfCut(const Area& feature, AreaUnion& cutters, double outside) {
    const double inside =
        areaOf(clipRings(feature.rings(), cutters.rings(), JWBooleanIntersection));
    const double whole = shoelaceArea(feature);
    const double difference = std::fabs(whole - inside - outside);
    if (difference <= kRounding * whole) return difference;
    return std::min(difference, std::fabs(resolvedArea(feature) - inside - outside));
}

void PieceCheck::add(ClippedContours&& piece) {
    m_sum += areaOf(piece);
    m_pieces.push_back(std::move(piece));
}

double PieceCheck::mismatch(AreaUnion& cutters, double outside) {
    const double whole = shoelaceArea(m_feature);
    const double known = std::max(outside, 0.0);
    const double difference = std::fabs(whole - m_sum - known);
    if (difference <= kRounding * whole) return difference;
    if (outside < 0) outside = areaOf(eraseUnion(m_feature, cutters));
    AreaUnion pieces(m_feature.envelop());
    for (const ClippedContours& piece : m_pieces) pieces.add(Area(piece.views()));
    const double covered = areaOf(pieces.contours());
    return std::fabs(resolvedArea(m_feature) - covered - outside);
}

}  // namespace jws::detail
