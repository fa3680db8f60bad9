// SPDX-License-Identifier: MIT
#ifndef JW_GPC_BOX_TREE_H
#define JW_GPC_BOX_TREE_H

#include "gpc/contour_set.h"

namespace jws::gpc {

/// A tree of boxes over runs of consecutive edges.
class BoxTree {
  public:
    static constexpr std::uint32_t kLeafEdges = 8;
    static constexpr std::uint32_t kFanout = 4;

    enum Kind : std::uint8_t { kLeaf, kChain, kGroup };

    struct Node {
        Box box;
        std::uint32_t first;  ///< children [first, last), or the edges of a leaf
        std::uint32_t last;
        std::uint32_t firstEdge;  ///< edges [firstEdge, lastEdge) of one contour (not in a group)
        std::uint32_t lastEdge;
        std::uint32_t contour;
        Kind kind;
        std::uint8_t sense;  ///< directions that its edges take: bits right, up, left, down
        bool unchecked;      ///< holds an edge that is not yet compared
        bool active;         ///< holds an edge that is to be compared at all
    };

    /// Builds the tree; sets `tree` of every contour. Every box is `margin` larger on all sides.
    void build(ContourSet& set, double margin);

    /// Calls `visit(i, contourOfI, j, contourOfJ)` once for each pair of edges whose boxes meet
    /// and of which one is unchecked. Stretches of one contour that run on in the same two
    /// directions are not compared with themselves.
    template <class Visit>
    void joinSelf(const ContourSet& set, Visit& visit) const {
        if (!m_nodes.empty() && m_nodes[m_root].unchecked) joinNode(set, m_nodes[m_root], visit);
    }

    /// Calls `visit(i)` for each edge whose box meets `box`.
    template <class Visit>
    void query(const ContourSet& set, const Box& box, const Visit& visit) const {
        if (!m_nodes.empty()) queryNode(set, m_nodes[m_root], box, visit);
    }

    /// Operands an odd number of whose edges lies left of `p` (strictly, on the horizontal
    /// through it; an edge through `p` does not count). Contours of operand `o` toggle bit `o`.
    int parityLeftOf(const ContourSet& set, const Point& p) const;
    /// Edges left of `p` that run down, less those that run up, each counted as its contour's
    /// operand.
    int depthLeftOf(const ContourSet& set, const Point& p) const;

    const Node& node(std::uint32_t i) const { return m_nodes[i]; }

    std::size_t bytes() const { return m_nodes.bytes() + m_order.bytes() + m_keys.bytes(); }
    void release() {
        m_nodes.release();
        m_order.release();
        m_keys.release();
        m_group.release();
    }

  private:
    /// Edges that go, say, right or up but never left or down meet at their common ends only.
    static bool isMonotone(int sense) { return (sense & 5) != 5 && (sense & 10) != 10; }

    /// Tells by the flags of two edges whether they are to be compared.
    static bool isDue(int flags) { return (flags & (kUnchecked | kDouble)) == kUnchecked; }

    template <class Visit>
    void queryNode(const ContourSet& set, const Node& n, const Box& box, const Visit& visit) const;
    template <class Visit>
    void joinNode(const ContourSet& set, const Node& n, Visit& visit) const;
    template <class Visit>
    void joinPair(const ContourSet& set, const Node& a, const Node& b, Visit& visit) const;
    template <class Visit>
    void joinLeaf(const ContourSet& set, const Node& n, Visit& visit) const;
    template <class Visit>
    void joinLeaves(const ContourSet& set, const Node& a, const Node& b, Visit& visit) const;

    std::uint32_t buildContour(const ContourSet& set, std::uint32_t c);
    std::uint32_t buildGroups(const ContourSet& set);
    template <class Finish>
    std::uint32_t buildLevels(std::uint32_t from, Finish finish);
    int downLeftOf(const ContourSet& set, const Node& n, const Point& p) const;
    int parity(const ContourSet& set, const Node& n, const Point& p) const;
    int depth(const ContourSet& set, const Node& n, const Point& p) const;

    Buffer<Node> m_nodes;
    Buffer<std::uint32_t> m_order;
    Buffer<std::uint64_t> m_keys;
    Buffer<Node> m_group;
    double m_margin = 0;
    std::uint32_t m_root = 0;
};

/// Tells whether edge ab, which passes the height of `p`, does so strictly left of it.
inline bool isLeftOf(const Point& a, const Point& b, const Point& p) {
    if (a.x < p.x && b.x < p.x) return true;
    if (!(a.x < p.x || b.x < p.x)) return false;
    return (a.y < b.y ? orientation(a, b, p) : orientation(b, a, p)) < 0;
}

inline Box edgeBox(const Point& a, const Point& b, double margin) {
    Box box;
#ifdef __SSE2__
    const __m128d p = _mm_loadu_pd(&a.x);
    const __m128d q = _mm_loadu_pd(&b.x);
    const __m128d m = _mm_set1_pd(margin);
    _mm_storeu_pd(&box.minX, _mm_sub_pd(_mm_min_pd(p, q), m));
    _mm_storeu_pd(&box.maxX, _mm_add_pd(_mm_max_pd(p, q), m));
#else
    box.minX = (a.x < b.x ? a.x : b.x) - margin;
    box.maxX = (a.x < b.x ? b.x : a.x) + margin;
    box.minY = (a.y < b.y ? a.y : b.y) - margin;
    box.maxY = (a.y < b.y ? b.y : a.y) + margin;
#endif
    return box;
}

template <class Visit>
void BoxTree::queryNode(const ContourSet& set, const Node& n, const Box& box,
                        const Visit& visit) const {
    if (!n.box.overlaps(box)) return;
    for (std::uint32_t i = n.first; i < n.last; ++i) {
        if (n.kind != kLeaf) {
            queryNode(set, m_nodes[i], box, visit);
        } else if (edgeBox(set.points[i], set.points[i + 1], m_margin).overlaps(box)) {
            visit(i);
        }
    }
}

template <class Visit>
void BoxTree::joinNode(const ContourSet& set, const Node& n, Visit& visit) const {
    if (isMonotone(n.sense)) return;
    if (n.kind == kLeaf) {
        joinLeaf(set, n, visit);
        return;
    }
    for (std::uint32_t i = n.first; i < n.last; ++i) {
        const Node& a = m_nodes[i];
        if (a.unchecked) joinNode(set, a, visit);
        for (std::uint32_t j = i + 1; j < n.last; ++j) {
            const Node& b = m_nodes[j];
            if ((a.unchecked | b.unchecked) & a.active & b.active & a.box.overlaps(b.box)) {
                joinPair(set, a, b, visit);
            }
        }
    }
}

template <class Visit>
void BoxTree::joinPair(const ContourSet& set, const Node& a, const Node& b, Visit& visit) const {
    if (a.lastEdge == b.firstEdge || b.lastEdge == a.firstEdge) {
        if (isMonotone(a.sense | b.sense)) return;
    }
    if (a.kind == kLeaf && b.kind == kLeaf) {
        joinLeaves(set, a, b, visit);
        return;
    }
    const auto extent = [](const Node& n) {
        return (n.box.maxX - n.box.minX) + (n.box.maxY - n.box.minY);
    };
    const bool openA = b.kind == kLeaf || (a.kind != kLeaf && extent(a) >= extent(b));
    const Node& open = openA ? a : b;
    const Node& other = openA ? b : a;
    for (std::uint32_t i = open.first; i < open.last; ++i) {
        const Node& child = m_nodes[i];
        if ((child.unchecked | other.unchecked) & child.active & child.box.overlaps(other.box)) {
            joinPair(set, child, other, visit);
        }
    }
}

template <class Visit>
void BoxTree::joinLeaf(const ContourSet& set, const Node& n, Visit& visit) const {
    const Point* p = set.points.data();
    const std::uint8_t* f = set.flags.data();
    Box boxes[kLeafEdges];
    for (std::uint32_t i = n.first; i < n.last; ++i) {
        const Box box = edgeBox(p[i], p[i + 1], m_margin);
        for (std::uint32_t j = n.first; j < i; ++j) {
            if (box.overlaps(boxes[j - n.first]) && isDue(f[i] | f[j])) {
                visit(j, n.contour, i, n.contour);
            }
        }
        boxes[i - n.first] = box;
    }
}

template <class Visit>
void BoxTree::joinLeaves(const ContourSet& set, const Node& a, const Node& b, Visit& visit) const {
    const Point* p = set.points.data();
    const std::uint8_t* f = set.flags.data();
    Box boxes[kLeafEdges];
    std::uint32_t edges[kLeafEdges];
    std::uint32_t count = 0;
    for (std::uint32_t i = a.first; i < a.last; ++i) {
        boxes[count] = edgeBox(p[i], p[i + 1], m_margin);
        edges[count] = i;
        count += boxes[count].overlaps(b.box);
    }
    if (count == 0) return;
    for (std::uint32_t j = b.first; j < b.last; ++j) {
        const Box box = edgeBox(p[j], p[j + 1], m_margin);
        if (!box.overlaps(a.box)) continue;
        for (std::uint32_t k = 0; k < count; ++k) {
            if (box.overlaps(boxes[k]) && isDue(f[edges[k]] | f[j])) {
                visit(edges[k], a.contour, j, b.contour);
            }
        }
    }
}

}  // namespace jws::gpc

#endif  // JW_GPC_BOX_TREE_H
