// SPDX-License-Identifier: MIT
#ifndef JW_GPC_CONTOUR_BUILDER_H
#define JW_GPC_CONTOUR_BUILDER_H

#include <gpc.h>

#include "gpc/arrangement.h"

namespace jws::gpc {

/// Tells whether an area whose label is `state` belongs to the result.
struct Rule {
    enum Kind { kDifference, kIntersection, kXor, kUnion, kCovered, kExactly } kind;
    std::int32_t label = 0;  ///< of kExactly
    bool holds(std::int32_t state) const {
        switch (kind) {
            case kDifference:
                return state == 1;
            case kIntersection:
                return state == 3;
            case kXor:
                return state == 1 || state == 2;
            case kUnion:
                return state != 0;
            case kCovered:
                return state > 0;
            default:  // kExactly
                return state == label;
        }
    }
};

/// Traces the result's contours in an arrangement and writes them in their fixed order.
class ContourBuilder {
  public:
    /// Fills `result`, which is empty; coordinates are divided by the scale again. Throws
    /// std::bad_alloc, then `result` holds what was finished and must be freed.
    void build(const Arrangement& arrangement, Rule rule, const Scale& unscale,
               gpc_polygon& result);

    /// Appends the contours to `set` instead, in no particular order, inside on their left.
    void append(const Arrangement& arrangement, Rule rule, ContourSet& set, std::int32_t operand);

    std::size_t bytes() const { return m_path.bytes() + m_next.bytes() + m_steps.bytes(); }
    void release();

  private:
    struct Loop {
        std::uint32_t first;  ///< its runs: m_steps[first, last)
        std::uint32_t last;
        std::uint32_t points;
        gpc_vertex* vertices;
        std::uint32_t least;  ///< position of the lexicographically smallest vertex
        bool hole;
        double area;   ///< twice the absolute area,
        double error;  ///< at most so far off
        bool measuredWide;
        WideArea wide;  ///< twice the area, where the sum above did not suffice
    };

    void choose();
    void link();
    void trace();
    void emit(std::uint32_t from);
    void dropInner();
    void dropInner(Loop& loop);
    bool continues(std::uint32_t before, std::uint32_t run, const Point& p);
    void straighten(Loop& loop, std::uint32_t end, const Point& from, const Point& to);
    bool mayStraighten(const Point& from, const Point& to);
    std::uint32_t startOf(std::uint32_t run) const {
        const Arrangement::Run& r = m_arrangement->runs()[run];
        return m_direction[run] > 0 ? r.from : r.to;
    }
    template <class Vertex>
    void copy(const Loop& loop, Vertex* out) const;
    void measure(Loop& loop);
    void place(Loop& loop);
    bool comesBefore(Loop& a, Loop& b);
    WideArea wideOf(Loop& loop);
    bool isChosen(std::uint32_t run) const { return m_direction[run] != 0; }

    const Arrangement* m_arrangement = nullptr;
    Rule m_rule{};
    Scale m_unscale;
    Buffer<std::int8_t> m_direction;  // of each run: 0 not in the result, 1 forward, -1 back
    Buffer<std::uint32_t> m_next;     // the run that follows
    Buffer<std::uint32_t> m_onPath;   // of each node: 1 + position on the path, or 0
    Buffer<std::uint32_t> m_visits;   // of each node: contours through it
    Buffer<std::uint32_t> m_path;
    Buffer<std::uint32_t> m_steps;
    Buffer<std::uint8_t> m_dropped;  // of each of m_steps: the point it starts with is no corner
    Buffer<std::uint32_t> m_chain;   // edges of the input that run through the points just dropped
    Buffer<Point> m_inner;           // these points
    Buffer<Loop> m_loops;
    Buffer<std::uint8_t> m_shared;
    Buffer<Point> m_turned;
    Buffer<std::uint32_t> m_order;
};

}  // namespace jws::gpc

#endif  // JW_GPC_CONTOUR_BUILDER_H
