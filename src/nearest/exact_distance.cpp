// SPDX-License-Identifier: MIT
#include "nearest/exact_distance.h"

#include "foundation/vertex_lists.h"

namespace jws::detail {

ExactArea::ExactArea(const JWGeometry& polygon) {
    everyVertexList(polygon, [&](const JWRawPoint* p, std::size_t n) {
        if (n > 1) m_rings.push_back({p, EdgeTree(p, static_cast<int>(n) - 1)});
        return true;
    });
}

/// Counts the edges to the right of the point; one end of each belongs to it, so that a vertex
/// counts once.
bool ExactArea::contains(const JWRawPoint& p) const {
    bool isInside = false;
    for (const Ring& ring : m_rings) {
        const bool isOn = ring.tree.visitRow(p.y, [&](int i) {
            const JWRawPoint &a = ring.points[i], &b = ring.points[i + 1];
            if (std::max(a.x, b.x) < p.x) return false;
            if ((a.y <= p.y) != (b.y <= p.y)) {
                const int side = a.y < b.y ? orientationSign(a, b, p) : orientationSign(b, a, p);
                if (side == 0) return true;
                if (side > 0) isInside = !isInside;
                return false;
            }
            return pointOnSegmentExact(p, a, b);
        });
        if (isOn) return true;
    }
    return isInside;
}

}  // namespace jws::detail
