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

    std::size_t bytes() const { return path_.bytes() + next_.bytes() + steps_.bytes(); }
    void release();

  private:
    struct Loop {
        std::uint32_t first;  ///< its runs: steps_[first, last)
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
        const Arrangement::Run& r = arrangement_->runs()[run];
        return direction_[run] > 0 ? r.from : r.to;
    }
    template <class Vertex>
    void copy(const Loop& loop, Vertex* out) const;
    void measure(Loop& loop);
    void place(Loop& loop);
    bool comesBefore(Loop& a, Loop& b);
    WideArea wideOf(Loop& loop);
    bool isChosen(std::uint32_t run) const { return direction_[run] != 0; }

    const Arrangement* arrangement_ = nullptr;
    Rule rule_{};
    Scale unscale_;
    Buffer<std::int8_t> direction_;  // of each run: 0 not in the result, 1 forward, -1 back
    Buffer<std::uint32_t> next_;     // the run that follows
    Buffer<std::uint32_t> onPath_;   // of each node: 1 + position on the path, or 0
    Buffer<std::uint32_t> visits_;   // of each node: contours through it
    Buffer<std::uint32_t> path_;
    Buffer<std::uint32_t> steps_;
    Buffer<std::uint8_t> dropped_;  // of each of steps_: the point it starts with is no corner
    Buffer<std::uint32_t> chain_;   // edges of the input that run through the points just dropped
    Buffer<Point> inner_;           // these points
    Buffer<Loop> loops_;
    Buffer<std::uint8_t> shared_;
    Buffer<Point> turned_;
    Buffer<std::uint32_t> order_;
};

}  // namespace jws::gpc

#endif  // JW_GPC_CONTOUR_BUILDER_H
