// SPDX-License-Identifier: MIT
#ifndef JW_GPC_NODING_H
#define JW_GPC_NODING_H

#include "gpc/box_tree.h"
#include "gpc/contour_set.h"
#include "gpc/snap_rounding.h"

namespace jws::gpc {

/// Splits the edges of a contour set until any two are equal, or meet at shared end points only,
/// and none passes a vertex too closely.
class Noder {
  public:
    /// Works on `source`, of which it changes the flags only; it must outlive the result.
    /// `exponent`: all coordinates are below 2^exponent. `aspect`: how much more y has been scaled
    /// than x.
    void run(ContourSet& source, int exponent, double aspect);

    /// The split contours, with `kMeeting` at every point where more than two edge ends come
    /// together. Valid until the next run.
    const ContourSet& result() const { return *m_set; }

    /// The edge of `origin()` that an edge of the result is a piece of.
    std::uint32_t originOf(std::uint32_t edge) const {
        return m_set == m_source ? edge : m_parents[m_active][edge];
    }
    const ContourSet& origin() const { return *m_source; }
    /// How far off an edge may pass a vertex and yet be cut there.
    const Nearness& nearness() const { return m_near; }

    /// Compares every pair once more and counts what the run has missed: 0, always. For tests.
    std::size_t countConflicts();

    /// Calls `visit(p, q)` for each edge pq of the result, in its contour's direction, that starts
    /// within the box of the edge ab and `reach` around it.
    template <class Visit>
    void forEdgesFrom(const Point& a, const Point& b, double reach, const Visit& visit) {
        const Box box = edgeBox(a, b, reach);
        const Point* p = m_set->points.data();
        if (useTree()) {
            m_tree.query(*m_set, box, [&](std::uint32_t edge) {
                if (box.holds(p[edge])) visit(p[edge], p[edge + 1]);
            });
            return;
        }
        for (const Contour& c : m_set->contours) {
            for (std::uint32_t i = c.first; i < c.last; ++i) {
                if (box.holds(p[i])) visit(p[i], p[i + 1]);
            }
        }
    }

    /// Operands an odd number of whose edges lies left of `p`, as in `BoxTree::parityLeftOf`.
    std::int32_t parityLeftOf(const Point& p);
    /// The same sum of operands for contours that run with their inside on their left.
    std::int32_t depthLeftOf(const Point& p);

    std::size_t bytes() const;
    void release();

  private:
    struct SplitPoint {
        Point p;
        std::uint32_t next;
        std::uint32_t by;  ///< the edge that splits this one
        bool moved;        ///< the edge does not pass through it exactly
    };

    struct DirectedEdge {
        std::uint32_t from;
        std::uint32_t to;  ///< never equal to `from` but in an empty slot
    };

    bool useTree();
    bool check();
    bool isPlainCorner(const Point* p) const;
    void meet(std::uint32_t i, const Contour& ci, std::uint32_t j, const Contour& cj);
    void meetAtEnd(std::uint32_t shared, std::uint32_t sharedOther, std::uint32_t farI,
                   std::uint32_t farJ, std::uint32_t i, std::uint32_t j, bool neighbours);
    void crossClosely(std::uint32_t i, std::uint32_t i1, std::uint32_t j, std::uint32_t j1);
    bool cutAt(std::uint32_t edge, std::uint32_t end, std::uint32_t point, std::uint32_t by);
    void cross(std::uint32_t i, std::uint32_t i1, std::uint32_t j, std::uint32_t j1);
    void mark(std::uint32_t point) { m_set->flags[point] |= kMeeting; }
    void split(std::uint32_t edge, const Point& p, bool moved, std::uint32_t by);
    void suspect(std::uint32_t i, std::uint32_t j) {
        if (m_pass > 1) return;
        m_set->flags[i] |= kSuspect;
        m_set->flags[j] |= kSuspect;
    }
    bool isHeap(std::size_t made) const;
    void findCrowds();
    /// After snap rounding an edge is cut at what lies on it only.
    bool isNear(const Point& p, const Point& a, const Point& b) const {
        return !m_snapped && m_near.holds(p, a, b);
    }
    void touch(std::uint32_t edge, std::uint32_t point, bool moved, std::uint32_t by) {
        mark(point);
        split(edge, m_set->points[point], moved, by);
    }
    bool bend();
    void snap();
    bool rebuild();
    void findDoubles();
    std::uint32_t splitsOf(std::uint32_t edge) const {
        const bool isDouble = (m_set->flags[edge] & kDouble) != 0;
        return m_firstSplit[isDouble ? m_standIns[edge] : edge];
    }
    bool sortSplits(std::uint32_t edge);
    /// Tells whether `p` lies by the edge of the source.
    bool keepsTo(std::uint32_t edge, const Point& p) const {
        return m_stray.holdsOnLine(p, m_source->points[edge], m_source->points[edge + 1]);
    }
    bool keepsToOrigin(const ContourSet& set, const Buffer<std::uint32_t>& parents) const;

    ContourSet* m_source = nullptr;
    ContourSet* m_set = nullptr;
    BoxTree m_tree;
    ContourSet m_work[2];
    Buffer<std::uint32_t> m_parents[2];  // of each edge of m_work: the source's edge it is part of
    int m_active = 0;
    CrossingGrid m_grid;
    SnapRounder m_rounder;
    int m_pass = 0;
    std::size_t m_most = 0;  // splits that this pass may make
    bool m_snapped = false;  // edges are cut at what lies on them only
    bool m_treeIsFresh = false;
    int m_scans = 0;   // rays answered without the tree
    Nearness m_near;   // within which edges are cut at vertices
    Nearness m_stray;  // beyond which no edge is led from its own line
    bool m_strayed = false;
    double m_tight = 0;   // beyond which plain sums tell that they are not
    double m_radius = 0;  // within which edges are suspect
    Buffer<SplitPoint> m_splits;
    Buffer<std::uint32_t> m_firstSplit;  // of each edge: 1 + index into m_splits, or 0
    Buffer<SplitPoint> m_sorted;
    Buffer<DirectedEdge> m_table;      // unchecked edges by their ends
    Buffer<std::uint32_t> m_doubles;   // double edges
    Buffer<std::uint32_t> m_standIns;  // of each double edge: the one that is compared
};

}  // namespace jws::gpc

#endif  // JW_GPC_NODING_H
