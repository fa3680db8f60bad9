// SPDX-License-Identifier: MIT
//
// EdgeIndex: the edges of rings or lines that cut, for two questions: which edges lie near a
// segment or a rectangle, and what is the parity of edges to the west of a point.
//
// Neighbouring edges lie near each other, so each chain of edges is taken in runs of eight as it
// comes; the chains follow one another along Hilbert's curve. Eight runs make a node, eight nodes a
// node of the next level. For the parity a node that lies wholly to the west, or wholly to the
// east, is not opened: whether an odd number of its edges crosses a row is told by its two ends.
//
// Points are kept as copies, brought near magnitude one by a power of two where products of
// coordinates would overflow or underflow; that changes no digit.
//
// Cost: O(n) and a sort of the chains to build; a question O(log n + k) as a rule for k edges that
// come near. Searching changes nothing: any number of threads may ask at once.
#ifndef JW_CLIP_EDGE_INDEX_H
#define JW_CLIP_EDGE_INDEX_H

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <vector>

#include "foundation/orientation.h"
#include "jw_envelop.h"

namespace jws::detail {

/// How candidates are found. The answers are the same.
enum class EdgeSearch { Tree, AllEdges };

/// A list of points, borrowed.
struct PointSpan {
    const JWRawPoint* points;
    int count;
};

/// The rectangle around a segment.
inline JWEnvelop boxOf(const JWRawPoint& a, const JWRawPoint& b) {
    return JWEnvelop(std::min(a.x, b.x), std::min(a.y, b.y), std::max(a.x, b.x),
                     std::max(a.y, b.y));
}

/// The rectangle around n points with finite coordinates; invalid for none.
inline JWEnvelop boxOf(const JWRawPoint* points, int n) {
    if (n == 0) return JWEnvelop::invalid();
    JWEnvelop box = boxOf(points[0], points[0]);
    for (int i = 1; i < n; ++i) {
        box.minX = std::min(box.minX, points[i].x);
        box.minY = std::min(box.minY, points[i].y);
        box.maxX = std::max(box.maxX, points[i].x);
        box.maxY = std::max(box.maxY, points[i].y);
    }
    return box;
}

/// The power of two that brings the largest of coordinates that are below 2^`exponent` in size to a
/// magnitude whose products are exact; 1 for all ordinary ones.
double scaleFor(int exponent);

class EdgeIndex {
  public:
    enum class Chains { Closed, Open };

    /// Copies the chains, times `scale`. Closed ones get an edge from their last point to the first
    /// where these differ. Edges of no length are left out. Coordinates must be finite.
    EdgeIndex(const std::vector<PointSpan>& chains, Chains kind, double scale, EdgeSearch search);

    bool isEmpty() const { return m_runs.empty(); }
    /// The scaled rectangle around everything.
    const JWEnvelop& envelop() const { return m_envelop; }
    double scale() const { return m_scale; }
    const JWRawPoint& from(int edge) const { return m_points[static_cast<std::size_t>(edge)]; }
    const JWRawPoint& to(int edge) const { return m_points[static_cast<std::size_t>(edge) + 1]; }

    /// Calls `visit(edge)` for every edge whose rectangle meets that of the segment ab, but for
    /// some that miss the segment.
    template <class Visit>
    void visitNear(const JWRawPoint& a, const JWRawPoint& b, const Visit& visit) const {
        const JWEnvelop box = boxOf(a, b);
        if (m_levels.empty() || box.isDisjoin(m_envelop)) return;
        visitNode(m_levels.size() - 1, 0, Beside(a, b, box, m_envelop), visit);
    }
    /// Tells whether an edge may reach `box`.
    bool mayReach(const JWEnvelop& box) const;

    /// Tells whether an odd number of edges lies to the west of `p`, strictly, on the row just
    /// above it.
    bool isOddWestOf(const JWRawPoint& p) const;

  private:
    static constexpr std::size_t kFan = 8;

    /// Consecutive edges of one chain.
    struct Run {
        int first;
        int end;
        int chain;
    };
    /// Boxes [first, first + count) of `m_boxes`; level 0 is that of the runs.
    struct Level {
        std::size_t first;
        std::size_t count;
    };

    /// What lies beside a segment: rectangles that meet its own and its line.
    class Beside {
      public:
        Beside(const JWRawPoint& a, const JWRawPoint& b, const JWEnvelop& box,
               const JWEnvelop& around)
            : m_box(box), m_a(a), m_ux(b.x - a.x), m_uy(b.y - a.y) {
            const double most =
                std::max({std::fabs(around.minX), std::fabs(around.maxX), std::fabs(around.minY),
                          std::fabs(around.maxY), std::fabs(box.minX), std::fabs(box.maxX),
                          std::fabs(box.minY), std::fabs(box.maxY)});
            m_slack = 8e-15 * most * (std::fabs(m_ux) + std::fabs(m_uy));
        }
        bool holds(const JWEnvelop& box) const {
            if (box.isDisjoin(m_box)) return false;
            const double middle = m_ux * ((box.minY + box.maxY) / 2 - m_a.y) -
                                  m_uy * ((box.minX + box.maxX) / 2 - m_a.x);
            const double reach = std::fabs(m_ux) * ((box.maxY - box.minY) / 2) +
                                 std::fabs(m_uy) * ((box.maxX - box.minX) / 2);
            return std::fabs(middle) <= reach + m_slack;
        }
        bool meets(const JWRawPoint& p, const JWRawPoint& q) const {
            return !boxOf(p, q).isDisjoin(m_box);
        }

      private:
        JWEnvelop m_box;
        JWRawPoint m_a;
        double m_ux, m_uy, m_slack;
    };

    template <class Visit>
    void visitNode(std::size_t level, std::size_t node, const Beside& beside,
                   const Visit& visit) const {
        if (m_search == EdgeSearch::Tree && !beside.holds(m_boxes[m_levels[level].first + node]))
            return;
        if (level == 0) {
            const Run& run = m_runs[node];
            for (int i = run.first; i < run.end; ++i) {
                if (beside.meets(from(i), to(i))) visit(i);
            }
            return;
        }
        const std::size_t end = std::min((node + 1) * kFan, m_levels[level - 1].count);
        for (std::size_t i = node * kFan; i < end; ++i) visitNode(level - 1, i, beside, visit);
    }

    /// Runs [first, last] lie below a node.
    void runsOf(std::size_t level, std::size_t node, std::size_t& first, std::size_t& last) const;
    bool reachIn(std::size_t level, std::size_t node, const JWEnvelop& box) const;
    bool oddWestIn(std::size_t level, std::size_t node, const JWRawPoint& p) const;
    void addChain(const PointSpan& chain, Chains kind, int number);
    void build();

    std::vector<JWRawPoint> m_points;
    std::vector<Run> m_runs;
    std::vector<JWEnvelop> m_boxes;
    std::vector<Level> m_levels;
    JWEnvelop m_envelop = JWEnvelop::invalid();
    double m_scale;
    EdgeSearch m_search;
};

}  // namespace jws::detail

#endif  // JW_CLIP_EDGE_INDEX_H
