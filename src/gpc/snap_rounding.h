// SPDX-License-Identifier: MIT
#ifndef JW_GPC_SNAP_ROUNDING_H
#define JW_GPC_SNAP_ROUNDING_H

#include "gpc/box_tree.h"
#include "gpc/contour_set.h"

namespace jws::gpc {

/// Snap rounding of all edges of a contour set at once.
class SnapRounder {
  public:
    /// Fills `to` with the contours of `from`, bent until no two edges cross: any two are disjoint,
    /// equal, or share end points only, and `parents` with the edge of `from` that each edge of
    /// `to` stands for. Contours that shrink to a point or a line are left out. `tree` is the tree
    /// over `from`; with `crossing` set every edge in it is to be compared, otherwise no two edges
    /// of `from` cross. Throws std::bad_alloc.
    void run(const ContourSet& from, const BoxTree& tree, const CrossingGrid& grid, bool crossing,
             ContourSet& to, Buffer<std::uint32_t>& parents);

    std::size_t bytes() const { return spots_.bytes() + hot_.bytes() + stops_.bytes(); }
    void release();

  private:
    /// A vertex or crossing, and the pixel that it lies in.
    struct Spot {
        Point pixel;
        Point at;
    };
    /// A hot point on the way of an edge.
    struct Stop {
        std::uint32_t hot;  ///< its place in `hot_`
        std::uint32_t next;
    };

    void addVertices(const ContourSet& from);
    void addCrossings(const ContourSet& from, const BoxTree& tree);
    void add(const Spot& spot);
    void compact();
    bool isAlone(const Point& pixel) const;
    void chooseHotPoints();
    void stopEdges(const ContourSet& from, const BoxTree& tree);
    void sortStops(const Point& a, const Point& b, std::uint32_t first);

    CrossingGrid grid_;
    Buffer<Spot> spots_;
    std::size_t crowd_ = 0;  // spots at which repetitions are dropped again
    Buffer<Point> hot_;
    Buffer<Stop> stops_;
    Buffer<std::uint32_t> firstStop_;  // of each edge: 1 + index into stops_, or 0
    Buffer<Point> way_;
};

}  // namespace jws::gpc

#endif  // JW_GPC_SNAP_ROUNDING_H
