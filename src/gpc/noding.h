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
    const ContourSet& result() const { return *set_; }

    /// The edge of `origin()` that an edge of the result is a piece of.
    std::uint32_t originOf(std::uint32_t edge) const {
        return set_ == source_ ? edge : parents_[active_][edge];
    }
    const ContourSet& origin() const { return *source_; }
    /// How far off an edge may pass a vertex and yet be cut there.
    const Nearness& nearness() const { return near_; }

    /// Compares every pair once more and counts what the run has missed: 0, always. For tests.
    std::size_t countConflicts();

    /// Calls `visit(p, q)` for each edge pq of the result, in its contour's direction, that starts
    /// within the box of the edge ab and `reach` around it.
    template <class Visit>
    void forEdgesFrom(const Point& a, const Point& b, double reach, const Visit& visit) {
        const Box box = edgeBox(a, b, reach);
        const Point* p = set_->points.data();
        if (useTree()) {
            tree_.query(*set_, box, [&](std::uint32_t edge) {
                if (box.holds(p[edge])) visit(p[edge], p[edge + 1]);
            });
            return;
        }
        for (const Contour& c : set_->contours) {
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
    void mark(std::uint32_t point) { set_->flags[point] |= kMeeting; }
    void split(std::uint32_t edge, const Point& p, bool moved, std::uint32_t by);
    void suspect(std::uint32_t i, std::uint32_t j) {
        if (pass_ > 1) return;
        set_->flags[i] |= kSuspect;
        set_->flags[j] |= kSuspect;
    }
    bool isHeap(std::size_t made) const;
    void findCrowds();
    /// After snap rounding an edge is cut at what lies on it only.
    bool isNear(const Point& p, const Point& a, const Point& b) const {
        return !snapped_ && near_.holds(p, a, b);
    }
    void touch(std::uint32_t edge, std::uint32_t point, bool moved, std::uint32_t by) {
        mark(point);
        split(edge, set_->points[point], moved, by);
    }
    bool bend();
    void snap();
    bool rebuild();
    void findDoubles();
    std::uint32_t splitsOf(std::uint32_t edge) const {
        const bool isDouble = (set_->flags[edge] & kDouble) != 0;
        return firstSplit_[isDouble ? standIns_[edge] : edge];
    }
    bool sortSplits(std::uint32_t edge);
    /// Tells whether `p` lies by the edge of the source.
    bool keepsTo(std::uint32_t edge, const Point& p) const {
        return stray_.holdsOnLine(p, source_->points[edge], source_->points[edge + 1]);
    }
    bool keepsToOrigin(const ContourSet& set, const Buffer<std::uint32_t>& parents) const;

    ContourSet* source_ = nullptr;
    ContourSet* set_ = nullptr;
    BoxTree tree_;
    ContourSet work_[2];
    Buffer<std::uint32_t> parents_[2];  // of each edge of work_: the source's edge it is part of
    int active_ = 0;
    CrossingGrid grid_;
    SnapRounder rounder_;
    int pass_ = 0;
    std::size_t most_ = 0;  // splits that this pass may make
    bool snapped_ = false;  // edges are cut at what lies on them only
    bool treeIsFresh_ = false;
    int scans_ = 0;   // rays answered without the tree
    Nearness near_;   // within which edges are cut at vertices
    Nearness stray_;  // beyond which no edge is led from its own line
    bool strayed_ = false;
    double tight_ = 0;   // beyond which plain sums tell that they are not
    double radius_ = 0;  // within which edges are suspect
    Buffer<SplitPoint> splits_;
    Buffer<std::uint32_t> firstSplit_;  // of each edge: 1 + index into splits_, or 0
    Buffer<SplitPoint> sorted_;
    Buffer<DirectedEdge> table_;      // unchecked edges by their ends
    Buffer<std::uint32_t> doubles_;   // double edges
    Buffer<std::uint32_t> standIns_;  // of each double edge: the one that is compared
};

}  // namespace jws::gpc

#endif  // JW_GPC_NODING_H
