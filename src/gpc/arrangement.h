// SPDX-License-Identifier: MIT
#ifndef JW_GPC_ARRANGEMENT_H
#define JW_GPC_ARRANGEMENT_H

#include "gpc/noding.h"

namespace jws::gpc {

/// What lies on the two sides of every stretch of boundary.
class Arrangement {
  public:
    static constexpr std::uint32_t kNone = 0xFFFFFFFFu;

    /// A stretch of a contour between two meeting points, or a whole contour that meets nothing.
    /// Its inner points are `count` points from `firstPoint` on, going round within the contour.
    struct Run {
        std::uint32_t from;  ///< node, or kNone for a whole contour
        std::uint32_t to;
        std::uint32_t contour;
        std::uint32_t firstPoint;
        std::uint32_t count;
        std::int32_t step;        ///< what crossing it from right to left changes
        std::int32_t left;        ///< what lies on its left
        std::uint32_t component;  ///< 1 + its number, or 0
        bool merged;              ///< lies on another run, which stands for both
        std::uint32_t twin;       ///< another run that lies on this one, or kNone
    };
    /// Half-edge 2r leaves the start of run r, half-edge 2r + 1 its end, backwards.
    using HalfEdge = std::uint32_t;

    struct Node {
        Point p;
        std::uint32_t first;  ///< its half-edges, counter-clockwise, from here on in `around()`
        std::uint32_t count;
    };

    /// `depth` false: operands are bit masks, each even-odd. True: every contour runs with its
    /// inside on its left and adds its operand to what lies there.
    void build(Noder& noder, bool depth);

    const ContourSet& set() const { return *m_set; }
    Noder& noder() const { return *m_noder; }
    Buffer<Run>& runs() { return m_runs; }
    const Buffer<Run>& runs() const { return m_runs; }
    const Buffer<Node>& nodes() const { return m_nodes; }
    const Buffer<HalfEdge>& around() const { return m_around; }
    /// The edges of `set()` that the run starts and ends with; not for a whole contour.
    std::uint32_t firstEdge(const Run& r) const {
        const Contour& c = m_set->contours[r.contour];
        return r.firstPoint == c.first ? c.last - 1 : r.firstPoint - 1;
    }
    std::uint32_t lastEdge(const Run& r) const {
        if (r.count == 0) return firstEdge(r);
        const Contour& c = m_set->contours[r.contour];
        const std::uint32_t i = r.firstPoint + r.count - 1;
        return i < c.last ? i : i - (c.last - c.first);
    }
    /// The run's inner point k.
    Point pointOf(const Run& r, std::uint32_t k) const {
        const Contour& c = m_set->contours[r.contour];
        const std::uint32_t i = r.firstPoint + k;
        return m_set->points[i < c.last ? i : i - (c.last - c.first)];
    }
    std::int32_t rightOf(const Run& r) const { return combine(r.left, -r.step); }
    std::uint32_t nodeOf(HalfEdge h) const {
        return (h & 1) ? m_runs[h >> 1].to : m_runs[h >> 1].from;
    }
    std::size_t bytes() const;
    void release();

  private:
    /// A point with `kMeeting`.
    struct Meeting {
        std::uint64_t hash;
        std::uint32_t point;
        std::uint32_t node;
    };

    std::int32_t combine(std::int32_t state, std::int32_t step) const {
        return m_depth ? state + step : state ^ (step < 0 ? -step : step);
    }
    std::uint32_t nodeAt(const Point& p, std::uint64_t hash);
    void growTable(std::size_t size);
    void makeNodes();
    void makeRuns();
    void gatherHalfEdges();
    void sortAround(std::uint32_t node);
    void mergeEqual(std::uint32_t node);
    Point directionOf(HalfEdge h) const;
    bool before(const Point& origin, const Point& a, const Point& b) const;
    void labelWhole(Run& r, Noder& noder);
    void fetchAhead(std::size_t head) const;
    void labelComponent(std::uint32_t start, std::uint32_t component, Noder& noder);
    std::int32_t outside(const Point& p, Noder& noder) const;

    Noder* m_noder = nullptr;
    const ContourSet* m_set = nullptr;
    bool m_depth = false;
    Buffer<Run> m_runs;
    Buffer<Node> m_nodes;
    Buffer<Meeting> m_meetings;     // in the order of the points
    Buffer<std::uint32_t> m_table;  // by the hash of the place: 1 + node, or 0
    Buffer<HalfEdge> m_around;
    Buffer<Point> m_directions;
    Buffer<std::uint32_t> m_visited;
    Buffer<std::uint32_t> m_queue;  // nodes of a component, found and not yet labelled
    Buffer<std::int32_t> m_offset;
    Buffer<std::uint32_t> m_cursor;
};

}  // namespace jws::gpc

#endif  // JW_GPC_ARRANGEMENT_H
