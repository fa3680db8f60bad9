// SPDX-License-Identifier: MIT
#ifndef JW_GPC_ARRANGEMENT_H
#define JW_GPC_ARRANGEMENT_H

#include <algorithm>
#include <cstddef>
#include <vector>

#include "gpc/grid_point.h"

namespace jws::detail {

/// The edges of two operands, cut where they meet, each with what lies on its two sides.
/// Keeps its working memory between runs; one object per thread.
class Arrangement {
  public:
    /// How a side is described.
    enum class Rule {
        Parity,   ///< bit k: operand k covers it, by the even-odd rule
        Winding,  ///< how often the directed loops of operand 0 go around it counter-clockwise
    };
    struct Segment {
        GridPoint a;  ///< a < b
        GridPoint b;
        int source[2];  ///< the input edge of either operand that it is a piece of, or -1
        int step;       ///< what changes from the right side to the left: bits, or a number
        int right;      ///< what lies right of a -> b
        bool fresh;
    };

    void clear(Rule rule);
    /// Adds an edge of operand 0 or 1. All edges of an operand together must be closed loops.
    void addEdge(GridPoint from, GridPoint to, int operand);
    /// Cuts the edges until they meet at end points only; false if that comes to no end.
    bool resolve();
    /// Finds what lies on the sides of each segment; after `resolve`.
    void label();
    const std::vector<Segment>& segments() const { return segments_; }
    /// What lies left of a segment.
    int left(const Segment& s) const { return sum(s.right, s.step); }
    /// Number of segments that there is memory for.
    std::size_t capacity() const { return std::max(segments_.capacity(), cuts_.capacity()); }

  private:
    struct Cut {
        int segment;
        GridPoint point;
    };
    struct Box {
        std::int64_t left, right, bottom, top;
        int segment;
    };

    int sum(int a, int b) const { return rule_ == Rule::Parity ? a ^ b : a + b; }
    void sortAndMerge();
    void findCuts();
    void sweepStrip(const Box* begin, const Box* end, std::int64_t bottom, std::int64_t top);
    void meet(int s, int t);
    void cutAt(int segment, const GridPoint& p);
    void applyCuts();
    bool isBelow(int s, int t) const;

    std::vector<Segment> segments_;
    std::vector<Segment> pieces_;
    std::vector<Cut> cuts_;
    std::vector<Box> boxes_;     // of all segments, from left to right
    std::vector<Box> inStrips_;  // by horizontal strip
    std::vector<std::size_t> stripEnds_;
    std::vector<int> byEnd_;
    std::vector<int> active_;  // segments that the sweep line crosses, from below
    int sources_ = 0;
    Rule rule_ = Rule::Parity;
};

}  // namespace jws::detail

#endif  // JW_GPC_ARRANGEMENT_H
