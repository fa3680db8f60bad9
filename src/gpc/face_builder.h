// SPDX-License-Identifier: MIT
#ifndef JW_GPC_FACE_BUILDER_H
#define JW_GPC_FACE_BUILDER_H

#include <gpc.h>

#include "gpc/arrangement.h"

namespace jws::gpc {

/// Takes the faces out of an arrangement of an area (operand 1) and of lines that cut it (operand
/// 0, contours that go there and back).
class FaceBuilder {
  public:
    /// Fills `faces`, which is empty: of each face the outer contour and then its holes. Returns
    /// false, with nothing filled, when no line cuts anything off. Coordinates are divided by the
    /// scale again. Throws std::bad_alloc, then `faces` holds what was finished and must be freed.
    bool build(const Arrangement& arrangement, const Scale& unscale, gpc_polygon& faces);

    std::size_t bytes() const {
        return m_keep.bytes() + m_next.bytes() + m_cycles.bytes() + m_steps.bytes() +
               m_edges.bytes();
    }
    void release();

  private:
    using HalfEdge = Arrangement::HalfEdge;
    static constexpr std::uint32_t kNone = Arrangement::kNone;

    /// A simple closed part of the walk along a face.
    struct Loop {
        std::uint32_t first;  ///< its half-edges: m_steps[first, last)
        std::uint32_t last;
        std::uint32_t cycle;
        std::uint32_t points;
        bool isOuter;
        Point least;  ///< its lexicographically smallest point
    };
    /// An edge that is not vertical, and what lies above it.
    struct Edge {
        Point left;
        Point right;
        std::uint32_t above;  ///< cycle
    };
    struct Below;
    class Sweep;

    void choose();
    bool isCutter(std::uint32_t run) const;
    bool trace();
    void link();
    void splitCycle(HalfEdge start);
    void addLoop(std::uint32_t from, std::uint32_t cycle);
    void findFaces();
    void gatherEdges();
    void write(const Loop& loop, int hole, const Scale& unscale, gpc_polygon& faces);
    template <class Visit>
    void forPoints(HalfEdge h, const Visit& visit) const;
    std::int32_t leftOf(HalfEdge h) const {
        const Arrangement::Run& r = m_arrangement->runs()[h >> 1];
        return (h & 1) ? m_arrangement->rightOf(r) : r.left;
    }
    bool isFace(HalfEdge h) const { return m_keep[h >> 1] && (leftOf(h) & 1); }

    const Arrangement* m_arrangement = nullptr;
    Buffer<std::uint8_t> m_keep;     // of each run
    Buffer<HalfEdge> m_next;         // of each half-edge
    Buffer<std::uint32_t> m_cycle;   // of each half-edge
    Buffer<std::uint32_t> m_onPath;  // of each node: 1 + position on the path, or 0
    Buffer<HalfEdge> m_path;
    Buffer<HalfEdge> m_steps;
    Buffer<Loop> m_loops;
    Buffer<std::uint32_t> m_cycles;  // of each cycle: its outer loop, or kNone; then the face's
    Buffer<Edge> m_edges;
    Buffer<std::uint32_t> m_order;
    Buffer<std::uint32_t>
        m_outerOf;  // of each node: 1 + the outer contour that was through it last
    Buffer<Point> m_turned;
};

}  // namespace jws::gpc

#endif  // JW_GPC_FACE_BUILDER_H
