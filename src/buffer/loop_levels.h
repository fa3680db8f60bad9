// SPDX-License-Identifier: MIT
//
// What a closed line winds around clockwise at least once, from its crossings alone.
//
// A line that is cut at all its crossings, and joined again so that each way in goes on along the
// other branch's way out, falls into circles that no longer cross (H. Seifert, Über das Geschlecht
// von Knoten, 1935). The winding number on the line's left is its level. All along a circle it is
// the same, and on the right it is one more: so the circles of level 0 are the boundary that is
// wanted, interior on their right. The level changes where the line crosses itself only, by one: up
// where the other branch comes from the right, down where it comes from the left. One walk along
// the line therefore tells it everywhere, from the lowest corner on, under which there is nothing.
//
// That costs a few nanoseconds a crossing beside finding them; no arrangement is built. Crossings,
// the order in which they lie along an edge, and the turn at the lowest corner are decided without
// rounding, or within bounds of it. The crossings themselves are rounded, which bends edges: the
// rings are proven not to meet before they are handed out. Lines that touch themselves or run along
// themselves, and those of which all that is not certain, are left to the clipping engine.
#ifndef JW_BUFFER_LOOP_LEVELS_H
#define JW_BUFFER_LOOP_LEVELS_H

#include <cstddef>
#include <vector>

#include "boolean/edge_pairs.h"
#include "boolean/plain_area.h"
#include "buffer/outline_union.h"
#include "foundation/ring_set.h"

namespace jws::detail {

/// Keeps its working memory between calls; one object per thread.
class LoopLevels {
  public:
    /// Appends what `loop` winds around clockwise at least once to `result`: rings that do not meet
    /// themselves or one another. False, with nothing appended, where that is not certain.
    bool resolve(const RingView& loop, Outline& result);

  private:
    /// Two edges that cross in a point inside of both.
    struct Crossing {
        int edges[2];
        std::size_t places[2];  ///< in `m_passes`
        bool leftwards;         ///< the second edge heads to the left of the first
    };
    /// The line comes by a crossing.
    struct Pass {
        int edge;
        double share;  ///< of the edge, behind
        double error;  ///< bound on that of `share`
        std::size_t crossing;
        int which;  ///< of the crossing's edges
    };

    bool takeLoop(const RingView& loop);
    bool findCrossings();
    bool takePair(int i, int j);
    bool addPass(std::size_t crossing, int which);
    bool orderPasses();
    bool setLevels();
    void addCircle(std::size_t start);
    void addWay(std::size_t pass);
    JWRawPoint pointOf(const Pass& pass) const;
    bool handOut(Outline& result);

    int edgeCount() const { return static_cast<int>(m_points.size()) - 1; }

    std::vector<JWRawPoint> m_points;  ///< distinct from their neighbours and closed
    EdgePairs m_pairs;
    std::vector<Crossing> m_crossings;
    std::vector<Pass> m_passes;  ///< in the order of the line
    std::vector<int> m_levels;   ///< of the way behind each pass
    std::vector<bool> m_isDone;  ///< the way behind a pass is part of a ring
    std::vector<JWRawPoint> m_ring;
    Outline m_rings;
    PlainAreaTest m_test;
};

}  // namespace jws::detail

#endif  // JW_BUFFER_LOOP_LEVELS_H
