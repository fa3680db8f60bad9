// SPDX-License-Identifier: MIT
#include "analysis/nearest/exact_distance.h"

#include "foundation/exact_crossings.h"
#include "foundation/vertex_lists.h"

namespace jws::detail {

void ExactArea::add(const JWGeometry& geometry) {
    const enumJWGeometryType type = geometry.getGeometryType();
    if (type == JWGeometryGeometryBag) {
        const auto& bag = static_cast<const JWGeometryCollection&>(geometry);
        for (int i = 0; i < bag.getGeometryCount(); ++i) add(*bag.getGeometryPtrAt(i));
    }
    if (type != JWGeometryPolygon && type != JWGeometryMultiPolygon) return;
    Rings rings;
    everyVertexList(geometry, [&](const JWRawPoint* p, std::size_t n) {
        if (n > 1) rings.push_back({p, EdgeTree(p, static_cast<int>(n) - 1)});
        return true;
    });
    if (!rings.empty()) m_parts.push_back(std::move(rings));
}

bool ExactArea::contains(const JWRawPoint& p) const {
    return std::any_of(m_parts.begin(), m_parts.end(),
                       [&](const Rings& rings) { return areAround(rings, p); });
}

bool ExactArea::areAround(const Rings& rings, const JWRawPoint& p) {
    ExactCrossings crossings(p);
    for (const Ring& ring : rings) {
        const bool isOn = ring.tree.visitRow(
            p.y, [&](int i) { return crossings.meetsEdge(ring.points[i], ring.points[i + 1]); });
        if (isOn) return true;
    }
    return crossings.odd();
}

}  // namespace jws::detail
