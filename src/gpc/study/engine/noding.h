// SPDX-License-Identifier: MIT
#ifndef JW_GPC_NODING_H
#define JW_GPC_NODING_H

#include "box_tree.h"
#include "contour_set.h"

namespace jws::gpc {

/// Splits the edges of a contour set until any two are equal, or meet at shared end points only.
class Noder {
  public:
    /// Works on `source`, of which it changes the flags only; it must outlive the result.
    /// `exponent`: all coordinates are below 2^exponent.
    void run(ContourSet& source, int exponent);

    /// The split contours, with `kMeeting` at every point where more than two edge ends come
    /// together. Valid until the next run.
    const ContourSet& result() const { return *set_; }

    /// Compares every pair once more and counts what the run has missed: 0, always. For tests.
    std::size_t countConflicts();

    /// Operands an odd number of whose edges lies left of `p`, as in `BoxTree::parityLeftOf`.
    std::int32_t parityLeftOf(const Point& p);
    /// How often the contours, as far as they lie left of `p`, run round it counter-clockwise.
    std::int32_t depthLeftOf(const Point& p);

    std::size_t bytes() const;
    void release();

  private:
    struct SplitPoint {
        Point p;
        std::uint32_t next;
        std::uint32_t on;  ///< the edge that is split,
        std::uint32_t by;  ///< and the one that does it
        bool moved;        ///< the edge does not pass through it exactly
    };

    bool useTree();
    bool check();
    void meet(std::uint32_t i, const Contour& ci, std::uint32_t j, const Contour& cj);
    void meetAtEnd(std::uint32_t shared, std::uint32_t sharedOther, std::uint32_t farI,
                   std::uint32_t farJ, std::uint32_t i, std::uint32_t j, bool neighbours);
    void cross(std::uint32_t i, const Contour& ci, std::uint32_t j, const Contour& cj);
    void mark(std::uint32_t point) { set_->flags[point] |= kMeeting; }
    void split(std::uint32_t edge, const Point& p, bool moved, std::uint32_t by);
    void suspect(std::uint32_t edge) { set_->flags[edge] |= kSuspect; }
    void noteNear(std::uint32_t i, std::uint32_t j);
    void findCrowds();
    void touch(std::uint32_t edge, std::uint32_t point, std::uint32_t by) {
        mark(point);
        split(edge, set_->points[point], false, by);
    }
    bool isStubborn(std::uint32_t edge) const {
        return attempt_ > 0 && stubborn_[set_ == source_ ? edge : parents_[active_][edge]];
    }
    void giveUp();
    void moveStubborn();
    void snapStubborn();
    void snapTo(std::uint32_t edge, const Contour& contour);
    bool isNear(const Point& p, Point a, Point b) const;
    bool rebuild();
    bool sortSplits(std::uint32_t edge);

    ContourSet* source_ = nullptr;
    ContourSet* set_ = nullptr;
    BoxTree tree_;
    ContourSet work_[2];
    ContourSet moved_[2];
    Buffer<Point> moving_;
    Buffer<std::uint32_t> parents_[2];  // of each edge of work_: the source's edge it is part of
    int active_ = 0;
    CrossingGrid grid_;
    CrossingGrid coarse_;
    int exponent_ = 0;
    int attempt_ = 0;
    int pass_ = 0;
    bool anyMoved_ = false;
    bool treeIsFresh_ = false;
    int scans_ = 0;                  // rays answered without the tree
    double radius_ = 0;              // within which edges are suspect
    Buffer<std::uint8_t> stubborn_;  // of each edge of the source
    Buffer<SplitPoint> splits_;
    Buffer<std::uint32_t> firstSplit_;  // of each edge: 1 + index into splits_, or 0
    std::uint32_t found_ = 0;           // splits before snapping
    Buffer<SplitPoint> sorted_;
    Buffer<std::uint32_t> crossed_;  // edges of proper crossings in late passes
};

}  // namespace jws::gpc

#endif  // JW_GPC_NODING_H
