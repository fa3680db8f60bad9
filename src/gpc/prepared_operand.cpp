// SPDX-License-Identifier: MIT
//
// An operand that keeps its box tree.
//
// Reading an operand through a window drops vertices that lie, like both their neighbours, beyond
// one side of the window. A stretch whose box lies beyond one side gives up all but its ends, so
// the tree hands out just the stretches near the window, and a few points for everything else.
// What comes out then passes the same rule vertex by vertex, and is what reading the whole operand
// through the window would have given.
#include "gpc/clip_engine.h"

namespace jws::gpc {

PreparedOperand::PreparedOperand(const gpc_polygon& polygon) {
    m_finite = boundsOf(polygon, m_box);
    if (!m_finite) return;
    m_set.add(polygon, 1, Scale(), nullptr);
    m_set.flags.fill(m_set.points.size(), 0);
    m_tree.build(m_set, 0);
}

void PreparedOperand::addTo(ContourSet& set, int operand, const Scale& scale,
                            const Box* window) const {
    for (const Contour& c : m_set.contours) {
        const std::size_t first = set.points.size();
        if (!window) {
            const std::uint32_t n = c.last - c.first;
            set.points.resize(first + n);
            for (std::uint32_t i = 0; i < n; ++i) {
                const Point& p = m_set.points[c.first + i];
                set.points[first + i] = scale(p.x, p.y);
            }
        } else {
            const BoxTree::Node& root = m_tree.node(c.tree);
            if (isBeyond(scale(root.box), *window)) continue;
            addNode(set, root, scale, *window);
            if (set.points.size() < first + 3) {
                set.points.resize(first);
                continue;
            }
            set.shorten(first, *window);
        }
        set.close(first, operand);
    }
}

void PreparedOperand::addNode(ContourSet& set, const BoxTree::Node& n, const Scale& scale,
                              const Box& window) const {
    const auto put = [&](std::uint32_t i) {
        const Point& p = m_set.points[i];
        set.points.push(scale(p.x, p.y));
    };
    if (n.lastEdge - n.firstEdge > 2 && isOneSided(scale(n.box), window)) {
        // The last of these points is the next stretch's first.
        put(n.firstEdge);
        put(n.lastEdge - 1);
        return;
    }
    for (std::uint32_t i = n.first; i < n.last; ++i) {
        if (n.kind == BoxTree::kLeaf) {
            put(i);
        } else {
            addNode(set, m_tree.node(i), scale, window);
        }
    }
}

}  // namespace jws::gpc
