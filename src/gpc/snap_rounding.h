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

    std::size_t bytes() const { return m_spots.bytes() + m_hot.bytes() + m_stops.bytes(); }
    void release();

  private:
    /// A vertex or crossing, and the pixel that it lies in.
    struct Spot {
        Point pixel;
        Point at;
    };
    /// A hot point on the way of an edge.
    struct Stop {
        std::uint32_t hot;  ///< its place in `m_hot`
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

    CrossingGrid m_grid;
    Buffer<Spot> m_spots;
    std::size_t m_crowd = 0;  // spots at which repetitions are dropped again
    Buffer<Point> m_hot;
    Buffer<Stop> m_stops;
    Buffer<std::uint32_t> m_firstStop;  // of each edge: 1 + index into m_stops, or 0
    Buffer<Point> m_way;
};

}  // namespace jws::gpc

#endif  // JW_GPC_SNAP_ROUNDING_H
