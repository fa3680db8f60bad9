// SPDX-License-Identifier: MIT
#ifndef JW_BOOLEAN_PLAIN_AREA_H
#define JW_BOOLEAN_PLAIN_AREA_H

#include <cstdint>
#include <vector>

#include "boolean/ring_set.h"

namespace jws::detail {

/// What is known of the rings of an area.
struct PlainArea {
    /// No ring meets itself or another one, not even in a point. False says nothing: they may be
    /// plain after all, as rings that touch, or very many that lie close together.
    bool plain = false;
    /// Bit i, when plain: ring i runs so that the area, read by the even-odd rule, is on its left.
    std::uint32_t interiorLeft = 0;
};

/// Finds out, without rounding, whether the rings of an area are plain. Keeps its working memory
/// between calls; one object per thread.
class PlainAreaTest {
  public:
    /// Coordinates must be finite and rings of fewer than three points left out. Cost: some ten
    /// nanoseconds a point for rings of up to some hundred points, O(n log n) as a rule for longer
    /// ones.
    PlainArea test(const RingViews& rings);

  private:
    struct Box {
        double minX, minY, maxX, maxY;
    };
    /// Neighbouring edges that all go one way along an axis, so that they cannot meet one another.
    struct Run {
        int first;
        int end;
        Box box;
    };
    struct Ring {
        int first;  ///< of its points, which are distinct from their neighbours and closed
        int edges;
        Box box;
    };

    bool takeRing(const RingView& ring);
    bool isSimple(const Ring& ring);
    bool hasShortRunsOnly(const Ring& ring);
    bool runsMeet(const Ring& ring, const Run& a, const Run& b);
    bool edgesMeet(const Ring& ring, int i, int j) const;
    bool ringsMeet(const Ring& a, const Ring& b);
    void collect(int first, int end, const Box& window, std::vector<int>& edges) const;
    bool isOutside(const Ring& outer, const JWRawPoint& p);
    bool isCounterClockwise(const Ring& ring);
    static bool overlap(const Box& a, const Box& b);
    static Box common(const Box& a, const Box& b);

    std::vector<JWRawPoint> m_points;
    std::vector<Ring> m_rings;
    std::vector<Run> m_runs;
    std::vector<int> m_edgesA;
    std::vector<int> m_edgesB;
    bool m_doubt = false;  ///< an orientation that must be left or right was neither
};

}  // namespace jws::detail

#endif  // JW_BOOLEAN_PLAIN_AREA_H
