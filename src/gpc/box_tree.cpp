// SPDX-License-Identifier: MIT
//
// Boxes over runs of edges.
//
// Leaves are runs of up to eight consecutive edges of one contour; above them, four neighbours
// along the contour share a parent until the contour has one node. Neighbours along an outline
// lie close together, so no sorting is needed for good boxes. Contours among themselves come in
// any order; they are put along a Hilbert curve and joined upwards in the same way.
//
// A node of a single contour answers ray parity at once when the ray passes its whole box: only
// whether its two ends lie on different sides of the ray's height counts. So a ray opens just the
// boxes around its start, and a contour whose box does not hold the start is skipped.
#include "gpc/box_tree.h"

#include <algorithm>

namespace jws::gpc {
namespace {

std::uint64_t hilbertKey(std::uint32_t x, std::uint32_t y) {
    std::uint64_t key = 0;
    for (std::uint32_t s = 1u << 15; s > 0; s >>= 1) {
        const std::uint32_t rx = (x & s) ? 1 : 0;
        const std::uint32_t ry = (y & s) ? 1 : 0;
        key = (key << 2) | ((3 * rx) ^ ry);
        if (ry == 0) {
            if (rx == 1) {
                x = 0xFFFF - x;
                y = 0xFFFF - y;
            }
            std::swap(x, y);
        }
    }
    return key;
}

std::uint32_t cellOf(double v, double low, double scale) {
    const double c = (v - low) * scale;
    return c <= 0 ? 0 : c >= 65535 ? 65535 : static_cast<std::uint32_t>(c);
}

/// The directions that an edge takes, as in `BoxTree::Node`.
inline int senseOf(const Point& p, const Point& q) {
#ifdef __SSE2__
    const __m128d from = _mm_loadu_pd(&p.x);
    const __m128d to = _mm_loadu_pd(&q.x);
    return _mm_movemask_pd(_mm_cmpgt_pd(to, from)) | _mm_movemask_pd(_mm_cmplt_pd(to, from)) << 2;
#else
    return (q.x > p.x) | (q.y > p.y) << 1 | (q.x < p.x) << 2 | (q.y < p.y) << 3;
#endif
}

}  // namespace

void BoxTree::build(ContourSet& set, double margin) {
    m_margin = margin;
    m_nodes.clear();
    m_group.clear();
    if (set.contours.empty()) return;
    m_nodes.reserve(set.points.size() / 5 + 2 * set.contours.size());
    for (std::uint32_t c = 0; c < set.contours.size(); ++c) {
        set.contours[c].tree = buildContour(set, c);
    }
    m_root = set.contours.size() == 1 ? set.contours[0].tree : buildGroups(set);
}

// Puts levels of parents over the nodes from `from` to the end, until one is left; `finish` sets
// what is particular to a kind of parent. Returns the root.
template <class Finish>
std::uint32_t BoxTree::buildLevels(std::uint32_t from, Finish finish) {
    std::uint32_t to = static_cast<std::uint32_t>(m_nodes.size());
    while (to - from > 1) {
        for (std::uint32_t i = from; i < to; i += kFanout) {
            const std::uint32_t end = std::min(i + kFanout, to);
            Node parent = m_nodes[i];
            for (std::uint32_t k = i + 1; k < end; ++k) {
                parent.box.include(m_nodes[k].box);
                parent.unchecked |= m_nodes[k].unchecked;
                parent.active |= m_nodes[k].active;
                parent.sense |= m_nodes[k].sense;
            }
            parent.first = i;
            parent.last = end;
            finish(parent);
            m_nodes.push(parent);
        }
        from = to;
        to = static_cast<std::uint32_t>(m_nodes.size());
    }
    return from;
}

std::uint32_t BoxTree::buildContour(const ContourSet& set, std::uint32_t c) {
    const Contour& contour = set.contours[c];
    std::uint32_t from = static_cast<std::uint32_t>(m_nodes.size());
    for (std::uint32_t e = contour.first; e < contour.last; e += kLeafEdges) {
        const std::uint32_t end = std::min(e + kLeafEdges, contour.last);
        Box box;
        std::uint8_t flags = 0;
        std::uint8_t common = 0xFF;
        int sense = 0;
        box.include(set.points[e]);
        for (std::uint32_t i = e; i < end; ++i) {
            box.include(set.points[i + 1]);
            flags |= set.flags[i];
            common &= set.flags[i];
            sense |= senseOf(set.points[i], set.points[i + 1]);
        }
        box.grow(m_margin);
        m_nodes.push({box, e, end, e, end, c, kLeaf, static_cast<std::uint8_t>(sense),
                      (flags & kUnchecked) != 0, (common & kDouble) == 0});
    }
    return buildLevels(from, [this](Node& parent) {
        parent.lastEdge = m_nodes[parent.last - 1].lastEdge;
        parent.kind = kChain;
    });
}

std::uint32_t BoxTree::buildGroups(const ContourSet& set) {
    const std::uint32_t count = static_cast<std::uint32_t>(set.contours.size());
    m_order.resize(count);
    for (std::uint32_t c = 0; c < count; ++c) m_order[c] = c;
    if (count > kFanout) {
        Box all;
        for (const Contour& c : set.contours) all.include(m_nodes[c.tree].box);
        const double width = std::max(all.maxX - all.minX, all.maxY - all.minY);
        const double scale = width > 0 ? 65535.0 / width : 0;
        m_keys.resize(count);
        for (std::uint32_t c = 0; c < count; ++c) {
            const Box& b = m_nodes[set.contours[c].tree].box;
            const std::uint64_t key = hilbertKey(cellOf(b.minX / 2 + b.maxX / 2, all.minX, scale),
                                                 cellOf(b.minY / 2 + b.maxY / 2, all.minY, scale));
            m_keys[c] = key << 32 | c;
        }
        std::sort(m_keys.begin(), m_keys.end());
        for (std::uint32_t c = 0; c < count; ++c) {
            m_order[c] = static_cast<std::uint32_t>(m_keys[c]);
        }
    }
    // Children must lie together, so the contours' nodes are copied in order.
    std::uint32_t from = static_cast<std::uint32_t>(m_nodes.size());
    for (std::uint32_t c = 0; c < count; ++c) {
        const Node copy = m_nodes[set.contours[m_order[c]].tree];
        m_nodes.push(copy);
    }
    return buildLevels(from, [](Node& parent) {
        parent.kind = kGroup;
        parent.sense = 15;
        parent.firstEdge = 0;  // no edge number ends a run of edges there
        parent.lastEdge = 0xFFFFFFFFu;
    });
}

int BoxTree::parityLeftOf(const ContourSet& set, const Point& p) const {
    return m_nodes.empty() ? 0 : parity(set, m_nodes[m_root], p);
}

int BoxTree::depthLeftOf(const ContourSet& set, const Point& p) const {
    return m_nodes.empty() ? 0 : depth(set, m_nodes[m_root], p);
}

int BoxTree::parity(const ContourSet& set, const Node& n, const Point& p) const {
    if (!n.box.holds(p)) return 0;
    if (n.kind != kGroup) return downLeftOf(set, n, p) & 1 ? set.contours[n.contour].operand : 0;
    int odd = 0;
    for (std::uint32_t i = n.first; i < n.last; ++i) odd ^= parity(set, m_nodes[i], p);
    return odd;
}

int BoxTree::depth(const ContourSet& set, const Node& n, const Point& p) const {
    if (!n.box.holds(p)) return 0;
    if (n.kind != kGroup) return downLeftOf(set, n, p) * set.contours[n.contour].operand;
    int sum = 0;
    for (std::uint32_t i = n.first; i < n.last; ++i) sum += depth(set, m_nodes[i], p);
    return sum;
}

int BoxTree::downLeftOf(const ContourSet& set, const Node& n, const Point& p) const {
    if (p.y < n.box.minY || p.y >= n.box.maxY || p.x <= n.box.minX) return 0;
    const Point* q = set.points.data();
    if (p.x > n.box.maxX) return (q[n.firstEdge].y > p.y) - (q[n.lastEdge].y > p.y);
    int down = 0;
    if (n.kind == kChain) {
        for (std::uint32_t i = n.first; i < n.last; ++i) down += downLeftOf(set, m_nodes[i], p);
        return down;
    }
    for (std::uint32_t i = n.first; i < n.last; ++i) {
        const int step = (q[i].y > p.y) - (q[i + 1].y > p.y);
        if (step != 0 && isLeftOf(q[i], q[i + 1], p)) down += step;
    }
    return down;
}

}  // namespace jws::gpc
