// SPDX-License-Identifier: MIT
//
// The pairs of edges of one ring that may have something in common.
//
// The edges are gathered into runs that go one way along x or along y; edges of a run cannot meet.
// Two runs can meet only where their boxes overlap, and there few edges of either lie. A ring of
// very many runs goes through a tree over its edges instead.
#ifndef JW_BOOLEAN_EDGE_PAIRS_H
#define JW_BOOLEAN_EDGE_PAIRS_H

#include <algorithm>
#include <cstddef>
#include <vector>

#include "foundation/edge_tree.h"
#include "foundation/orientation.h"
#include "foundation/segment_math.h"

namespace jws::detail {

/// A box whose test against another one takes no branch.
struct EdgeBox {
    double minX, minY, maxX, maxY;

    bool meets(const EdgeBox& o) const {
        return (minX <= o.maxX) & (maxX >= o.minX) & (minY <= o.maxY) & (maxY >= o.minY);
    }
    EdgeBox common(const EdgeBox& o) const {
        return {std::max(minX, o.minX), std::max(minY, o.minY), std::min(maxX, o.maxX),
                std::min(maxY, o.maxY)};
    }
    void add(const JWRawPoint& p) {
        minX = std::min(minX, p.x);
        minY = std::min(minY, p.y);
        maxX = std::max(maxX, p.x);
        maxY = std::max(maxY, p.y);
    }
};

inline EdgeBox boxOfEdge(const JWRawPoint& a, const JWRawPoint& b) {
    return {std::min(a.x, b.x), std::min(a.y, b.y), std::max(a.x, b.x), std::max(a.y, b.y)};
}

/// Appends those of the edges [first, end) whose boxes meet a window.
inline void collectEdges(const JWRawPoint* points, int first, int end, const EdgeBox& window,
                         std::vector<int>& edges) {
    for (int i = first; i < end; ++i) {
        if (boxOfEdge(points[i], points[i + 1]).meets(window)) edges.push_back(i);
    }
}

/// Whether b -> c runs back over a -> b, or may do so.
inline bool foldsBack(const JWRawPoint& a, const JWRawPoint& b, const JWRawPoint& c) {
    const int turn = orientationSign(a, b, c);
    if (turn != 0) return turn == 2;
    const bool ahead = a.x != b.x ? (a.x < b.x) == (b.x < c.x) : (a.y < b.y) == (b.y < c.y);
    return !ahead;
}

/// Keeps its working memory between calls; one object per thread.
class EdgePairs {
  public:
    /// Calls `visit(i, j)`, i < j, for pairs of edges until it returns true; tells whether it did.
    /// All pairs that have a point in common are among them, but for neighbours of which neither
    /// runs back over the other. `points` are `edges` + 1, no two in a row equal.
    template <class Visit>
    bool search(const JWRawPoint* points, int edges, Visit&& visit) {
        if (!gatherRuns(points, edges)) return EdgeTree(points, edges).visitPairs(visit);
        for (std::size_t i = 0; i < m_runs.size(); ++i) {
            const EdgeBox box = m_runs[i].box;
            for (std::size_t j = i + 1; j < m_runs.size(); ++j) {
                if (box.meets(m_runs[j].box) && searchRuns(points, m_runs[i], m_runs[j], visit))
                    return true;
            }
        }
        return false;
    }

  private:
    static constexpr std::size_t kMostRuns = 256;
    static constexpr int kLongestRun = 16;  // edges

    /// Edges in a row that all go one way along an axis.
    struct Run {
        EdgeBox box;
        int first;
        int end;
    };

    /// The ways along the axes that an edge goes, one bit each.
    static unsigned waysOf(const JWRawPoint& a, const JWRawPoint& b) {
        return (a.x < b.x ? 1u : 0u) | (a.x > b.x ? 2u : 0u) | (a.y < b.y ? 4u : 0u) |
               (a.y > b.y ? 8u : 0u);
    }

    /// False when there are too many.
    bool gatherRuns(const JWRawPoint* points, int edges) {
        m_runs.clear();
        unsigned ways = 0;
        for (int i = 0; i < edges; ++i) {
            const JWRawPoint &a = points[i], &b = points[i + 1];
            const unsigned mine = waysOf(a, b);
            ways &= mine;
            if (ways == 0 || i - m_runs.back().first == kLongestRun) {
                if (m_runs.size() == kMostRuns) return false;
                ways = mine;
                m_runs.push_back({{a.x, a.y, a.x, a.y}, i, i});
            }
            m_runs.back().box.add(b);
            m_runs.back().end = i + 1;
        }
        return true;
    }

    template <class Visit>
    bool searchRuns(const JWRawPoint* points, const Run& a, const Run& b, Visit& visit) {
        const EdgeBox window = a.box.common(b.box);
        m_ofA.clear();
        collectEdges(points, a.first, a.end, window, m_ofA);
        if (m_ofA.empty()) return false;
        m_ofB.clear();
        collectEdges(points, b.first, b.end, window, m_ofB);
        for (const int i : m_ofA) {
            for (const int j : m_ofB) {
                if (visit(i, j)) return true;
            }
        }
        return false;
    }

    std::vector<Run> m_runs;
    std::vector<int> m_ofA;
    std::vector<int> m_ofB;
};

}  // namespace jws::detail

#endif  // JW_BOOLEAN_EDGE_PAIRS_H
