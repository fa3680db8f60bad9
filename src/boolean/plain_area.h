// SPDX-License-Identifier: MIT
#ifndef JW_BOOLEAN_PLAIN_AREA_H
#define JW_BOOLEAN_PLAIN_AREA_H

#include <cstdint>
#include <vector>

#include "boolean/edge_pairs.h"
#include "foundation/ring_set.h"

namespace jws::detail {

/// What is known of the rings of an area.
struct PlainArea {
    /// No ring meets itself or another one, not even in a point. False says nothing: they may be
    /// plain after all, as rings that touch, or very many that lie close together.
    bool plain = false;
    /// Bit i, when plain: ring i runs so that the area, read by the even-odd rule, is on its left.
    std::uint32_t interiorLeft = 0;
    /// Bit i, when plain: ring i lies within an odd number of the others, as holes do.
    std::uint32_t holes = 0;
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
    struct Ring {
        int first;  ///< of its points, which are distinct from their neighbours and closed
        int edges;
        EdgeBox box;
    };

    bool takeRing(const RingView& ring);
    bool isSimple(const Ring& ring);
    bool edgesMeet(const Ring& ring, int i, int j) const;
    bool ringsMeet(const Ring& a, const Ring& b);
    bool isOutside(const Ring& outer, const JWRawPoint& p);
    bool isCounterClockwise(const Ring& ring);

    std::vector<JWRawPoint> m_points;
    std::vector<Ring> m_rings;
    EdgePairs m_pairs;
    std::vector<int> m_edgesA;
    std::vector<int> m_edgesB;
    bool m_doubt = false;  ///< an orientation that must be left or right was neither
};

}  // namespace jws::detail

#endif  // JW_BOOLEAN_PLAIN_AREA_H
