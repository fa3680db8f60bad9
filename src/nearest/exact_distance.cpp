// SPDX-License-Identifier: MIT
#include "nearest/exact_distance.h"

#include "foundation/exact_crossings.h"
#include "foundation/vertex_lists.h"

namespace jws::detail {

ExactArea::ExactArea(const JWGeometry& polygon) {
    everyVertexList(polygon, [&](const JWRawPoint* p, std::size_t n) {
        if (n > 1) m_rings.push_back({p, EdgeTree(p, static_cast<int>(n) - 1)});
        return true;
    });
}

bool ExactArea::contains(const JWRawPoint& p) const {
    ExactCrossings crossings(p);
    for (const Ring& ring : m_rings) {
        const bool isOn = ring.tree.visitRow(
            p.y, [&](int i) { return crossings.meetsEdge(ring.points[i], ring.points[i + 1]); });
        if (isOn) return true;
    }
    return crossings.odd();
}

}  // namespace jws::detail
