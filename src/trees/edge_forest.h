// SPDX-License-Identifier: MIT
//
// The edges of a geometry, chain by chain, under one tree of rectangles.
//
// Neighbours along a chain lie close together, so runs of eight edges make good leaves without any
// sorting; above them, up to eight neighbours share a parent until the chain has one node. Chains
// among themselves come in any order: they are put along Hilbert's curve and joined upwards in the
// same way.
//
// A node of one chain answers a ray at once when the ray passes its whole rectangle: it crosses the
// run an odd number of times exactly when the two ends lie on different sides of it. A closed chain
// that the ray passes does not count at all. So a ray opens only rectangles that hold its start.
//
// Runs whose edges all go one way along x and one way along y cannot meet themselves.
//
// Cost: O(n) to build, and O(c log c) for c chains. A point costs O(log n) as a rule, pairs about
// O((n + k) log n) for k pairs of edges whose rectangles meet.
#ifndef JW_TREES_EDGE_FOREST_H
#define JW_TREES_EDGE_FOREST_H

#include <cstdint>
#include <vector>

#include "foundation/orientation.h"
#include "foundation/oriented_box.h"
#include "jw_envelop.h"

namespace jws::detail {

/// A line or ring: the points `first` to `last`, of which no two neighbours are equal, and the
/// edges `first` to `last` − 1 from each to the next.
struct EdgeChain {
    std::uint32_t first = 0;
    std::uint32_t last = 0;
    bool area = false;    ///< a ring of an area
    bool closed = false;  ///< the last point is the first
    std::uint32_t node = 0;
};

/// Where on an edge something lies.
enum class EdgePlace : std::uint8_t { kStart, kMiddle, kEnd };

/// An edge that a point lies on.
struct TouchedEdge {
    std::uint32_t edge;
    EdgePlace place;
    bool area;
};

class EdgeForest {
  public:
    static constexpr std::uint32_t kFan = 8;
    enum Kind : std::uint8_t { kLeaf, kRun, kGroup };

    struct Node {
        JWEnvelop box;
        std::uint32_t first;  ///< children [first, last), or the edges of a leaf
        std::uint32_t last;
        std::uint32_t firstEdge;  ///< edges [firstEdge, lastEdge) of one chain (not in a group)
        std::uint32_t lastEdge;
        std::uint32_t chain;
        Kind kind;
        std::uint8_t sense;  ///< ways that its edges go: bits right, left, up, down
    };

    void clear();
    void addPoint(const JWRawPoint& p) { m_points.push_back(p); }
    /// Makes a chain of the points added since the last one, of which there are two at least.
    void endChain(bool area);
    /// Takes the points added since the last chain away again.
    void dropPoints() { m_points.resize(m_chains.empty() ? 0 : m_chains.back().last + 1); }
    /// Points added since the last chain.
    std::size_t openPoints() const {
        return m_points.size() - (m_chains.empty() ? 0 : m_chains.back().last + 1);
    }
    void build();

    const JWRawPoint* points() const { return m_points.data(); }
    std::size_t pointCount() const { return m_points.size(); }
    const std::vector<EdgeChain>& chains() const { return m_chains; }
    bool isEmpty() const { return m_chains.empty(); }
    const Node& node(std::uint32_t i) const { return m_nodes[i]; }
    std::uint32_t root() const { return m_root; }
    const JWEnvelop& chainBox(std::size_t chain) const { return m_nodes[m_chains[chain].node].box; }

    /// Tells whether an odd number of edges of areas lies to the right of `p`, strictly and on the
    /// horizontal through it, an edge owning its lower end and not its upper one. It is the parity
    /// of the place just above and to the right of `p`. Calls `touch(edge)` for each edge that `p`
    /// lies on, which do not count.
    template <class Touch>
    bool isOddAt(const JWRawPoint& p, Touch&& touch) const {
        return !m_nodes.empty() && isOddIn(m_nodes[m_root], p, touch);
    }

    /// Calls `visit(i, chainOfI, j, chainOfJ)` for every edge i here and j there whose rectangles
    /// meet, until it returns true; tells whether it did.
    template <class Visit>
    bool visitPairs(const EdgeForest& other, Visit&& visit) const {
        if (isEmpty() || other.isEmpty()) return false;
        const Node &a = m_nodes[m_root], &b = other.m_nodes[other.m_root];
        if (a.box.isDisjoin(b.box)) return false;
        PairSearch search(*this, other);
        return pairsOf(a, b, search, visit);
    }
    /// The same for pairs i < j of edges of this forest, except neighbours along a chain that do
    /// not run back over one another.
    template <class Visit>
    bool visitOwnPairs(Visit&& visit) const {
        if (isEmpty()) return false;
        PairSearch search(*this, *this);
        return ownPairsOf(m_nodes[m_root], search, visit);
    }

  private:
    void buildChain(EdgeChain& chain, std::uint32_t index);
    void buildGroups();
    template <class Finish>
    std::uint32_t buildLevels(std::uint32_t from, Finish&& finish);

    JWEnvelop edgeBox(std::uint32_t i) const {
        const JWRawPoint &a = m_points[i], &b = m_points[i + 1];
        return {a.x < b.x ? a.x : b.x, a.y < b.y ? a.y : b.y, a.x < b.x ? b.x : a.x,
                a.y < b.y ? b.y : a.y};
    }
    /// Edges that go, say, right or up but never left or down meet at their common ends only.
    static bool isStaircase(int sense) { return (sense & 3) != 3 && (sense & 12) != 12; }
    /// Two runs of this forest that follow one another, all of one staircase.
    static bool formStaircase(const Node& a, const Node& b) {
        return (a.lastEdge == b.firstEdge || b.lastEdge == a.firstEdge) &&
               isStaircase(a.sense | b.sense);
    }
    /// Both edges are of one chain, i < j.
    bool areIdleNeighbours(std::uint32_t i, std::uint32_t j, const EdgeChain& chain) const;

    template <class Touch>
    bool isOddIn(const Node& n, const JWRawPoint& p, Touch& touch) const;
    template <class Touch>
    bool isOddEdge(std::uint32_t i, const Node& n, const JWRawPoint& p, Touch& touch) const;
    /// A search for pairs of runs that may meet. Bundles of long, nearly parallel edges have
    /// upright rectangles that all overlap although nothing meets: when more pairs of leaves come
    /// up than ordinary outlines have, rectangles along the edges are made, which tell them apart.
    class PairSearch {
      public:
        PairSearch(const EdgeForest& a, const EdgeForest& b);
        const EdgeForest& other() const { return m_b; }
        bool isWithinOne() const { return &m_a == &m_b; }
        /// Tells that two runs, whose rectangles meet, cannot meet.
        bool areApart(const Node& a, const Node& b) {
            if (a.kind == kLeaf && b.kind == kLeaf && m_leafPairs++ == m_limit) makeOriented();
            return !m_orientedA.empty() && areOrientedApart(a, b);
        }

      private:
        void makeOriented();
        bool areOrientedApart(const Node& a, const Node& b) const;

        const EdgeForest& m_a;
        const EdgeForest& m_b;
        std::size_t m_leafPairs = 0;
        std::size_t m_limit;
        double m_extent = 0;
        std::vector<OrientedBox> m_orientedA;
        std::vector<OrientedBox> m_orientedB;
    };
    std::vector<OrientedBox> orientedBoxes(const JWRawPoint& origin) const;

    template <class Visit>
    bool pairsOf(const Node& a, const Node& b, PairSearch& search, Visit& visit) const;
    template <class Visit>
    bool leafPairs(const Node& a, const EdgeForest& other, const Node& b, Visit& visit) const;
    template <class Visit>
    bool ownPairsOf(const Node& n, PairSearch& search, Visit& visit) const;
    template <class Visit>
    bool ownLeafPairs(const Node& n, Visit& visit) const;

    std::vector<JWRawPoint> m_points;
    std::vector<EdgeChain> m_chains;
    std::vector<Node> m_nodes;
    std::uint32_t m_root = 0;
};

template <class Touch>
bool EdgeForest::isOddIn(const Node& n, const JWRawPoint& p, Touch& touch) const {
    if (p.y < n.box.minY || p.y > n.box.maxY || p.x > n.box.maxX) return false;
    if (p.x < n.box.minX) {
        if (n.kind == kGroup || !m_chains[n.chain].area) return false;
        return (m_points[n.firstEdge].y > p.y) != (m_points[n.lastEdge].y > p.y);
    }
    bool odd = false;
    for (std::uint32_t i = n.first; i < n.last; ++i)
        odd ^= n.kind == kLeaf ? isOddEdge(i, n, p, touch) : isOddIn(m_nodes[i], p, touch);
    return odd;
}

template <class Touch>
bool EdgeForest::isOddEdge(std::uint32_t i, const Node& n, const JWRawPoint& p,
                           Touch& touch) const {
    const JWRawPoint &a = m_points[i], &b = m_points[i + 1];
    if ((a.x < p.x && b.x < p.x) || (a.y < p.y && b.y < p.y) || (a.y > p.y && b.y > p.y))
        return false;
    const bool crosses = (a.y > p.y) != (b.y > p.y);
    if (a.x > p.x && b.x > p.x) return crosses && m_chains[n.chain].area;
    if (p == a || p == b) {
        touch(TouchedEdge{i, p == a ? EdgePlace::kStart : EdgePlace::kEnd, m_chains[n.chain].area});
        return false;
    }
    if (!crosses && a.y != b.y) return false;  // its upper end is at this height
    const int side = orientationSign(a, b, p);
    if (side == 0) {
        touch(TouchedEdge{i, EdgePlace::kMiddle, m_chains[n.chain].area});
        return false;
    }
    return crosses && m_chains[n.chain].area && (side > 0) == (b.y > a.y);
}

template <class Visit>
bool EdgeForest::pairsOf(const Node& a, const Node& b, PairSearch& search, Visit& visit) const {
    if (search.isWithinOne() && formStaircase(a, b)) return false;
    if (search.areApart(a, b)) return false;
    const EdgeForest& other = search.other();
    if (a.kind == kLeaf && b.kind == kLeaf) return leafPairs(a, other, b, visit);
    const auto extent = [](const JWEnvelop& e) { return (e.maxX - e.minX) + (e.maxY - e.minY); };
    if (b.kind == kLeaf || (a.kind != kLeaf && extent(a.box) >= extent(b.box))) {
        for (std::uint32_t i = a.first; i < a.last; ++i)
            if (!m_nodes[i].box.isDisjoin(b.box) && pairsOf(m_nodes[i], b, search, visit))
                return true;
        return false;
    }
    for (std::uint32_t i = b.first; i < b.last; ++i) {
        const Node& child = other.m_nodes[i];
        if (!child.box.isDisjoin(a.box) && pairsOf(a, child, search, visit)) return true;
    }
    return false;
}

template <class Visit>
bool EdgeForest::leafPairs(const Node& a, const EdgeForest& other, const Node& b,
                           Visit& visit) const {
    JWEnvelop boxes[kFan];
    std::uint32_t edges[kFan];
    std::uint32_t count = 0;
    for (std::uint32_t i = a.first; i < a.last; ++i) {
        boxes[count] = edgeBox(i);
        edges[count] = i;
        count += !boxes[count].isDisjoin(b.box);
    }
    if (count == 0) return false;
    for (std::uint32_t j = b.first; j < b.last; ++j) {
        const JWEnvelop box = other.edgeBox(j);
        if (box.isDisjoin(a.box)) continue;
        for (std::uint32_t k = 0; k < count; ++k)
            if (!box.isDisjoin(boxes[k]) && visit(edges[k], a.chain, j, b.chain)) return true;
    }
    return false;
}

template <class Visit>
bool EdgeForest::ownPairsOf(const Node& n, PairSearch& search, Visit& visit) const {
    if (isStaircase(n.sense)) return false;
    if (n.kind == kLeaf) return ownLeafPairs(n, visit);
    const auto forward = [&](std::uint32_t i, std::uint32_t c, std::uint32_t j, std::uint32_t d) {
        if (c == d && areIdleNeighbours(i < j ? i : j, i < j ? j : i, m_chains[c])) return false;
        return i < j ? visit(i, c, j, d) : visit(j, d, i, c);
    };
    for (std::uint32_t i = n.first; i < n.last; ++i) {
        if (ownPairsOf(m_nodes[i], search, visit)) return true;
        for (std::uint32_t j = i + 1; j < n.last; ++j)
            if (!m_nodes[i].box.isDisjoin(m_nodes[j].box) &&
                pairsOf(m_nodes[i], m_nodes[j], search, forward))
                return true;
    }
    return false;
}

template <class Visit>
bool EdgeForest::ownLeafPairs(const Node& n, Visit& visit) const {
    JWEnvelop boxes[kFan];
    for (std::uint32_t j = n.first; j < n.last; ++j) {
        boxes[j - n.first] = edgeBox(j);
        for (std::uint32_t i = n.first; i < j; ++i)
            if (!boxes[i - n.first].isDisjoin(boxes[j - n.first]) &&
                !areIdleNeighbours(i, j, m_chains[n.chain]) && visit(i, n.chain, j, n.chain))
                return true;
    }
    return false;
}

}  // namespace jws::detail

#endif  // JW_TREES_EDGE_FOREST_H
