// SPDX-License-Identifier: MIT
//
// Closed lines that wind around the union of the capsules along a line.
//
// Consecutive capsules cover most of each other. Their sum, less what each has in common with the
// one before it, still covers every point of their union at least once and no other point, and its
// boundary is short: along the two sides of the line it runs from side to side of the capsules.
// Where the line turns away from a side, the two half circles around the corner take turns in being
// the outer one, and cross in between. Where it turns towards a side, the two straight sides cross;
// if they are too short for that, the boundary runs back to the line's corner and out again, which
// winds around nothing that is not covered anyway.
//
// One side of a closed line counts the strips beside the segments, less what is cut off at the
// corners. That stays positive as long as the pieces cut off over a place lie in both their strips
// and do not go all the way around: where a small ring would turn inside out, since there is no
// arc, one corner runs by the line.
//
// So the line never winds around anything that is not covered, nor against the clock. That it winds
// around everything holds for segments that are not much shorter than what an arc's edge spans:
// then each half circle lies in the next capsule but for the arc that both have. Corners are those
// of the capsules, bit for bit; crossings are rounded.
#ifndef JW_BUFFER_OFFSET_LOOP_H
#define JW_BUFFER_OFFSET_LOOP_H

#include <cstddef>
#include <vector>

#include "buffer/buffer_shape.h"
#include "foundation/ring_set.h"

namespace jws::detail {

/// Whether a segment is long enough for a loop to stand for its capsule and its neighbours'.
bool isLongForLoop(const Shape& piece, double distance);

/// Makes loops. A value to keep for many of them; one thread at a time.
class OffsetLoop {
  public:
    /// Starts anew with the capsules of segments each of which begins where the last one ends.
    void take(const Shape* pieces, std::size_t count, double distance, const ArcStyle& arcs);

    /// Gives a ring, clockwise, that winds at least once around what the capsules cover, where all
    /// are long enough, and not around anything else. Rings are valid until the next call.
    RingView around();
    /// Gives the left or the right side of a line that ends where it begins, the capsules on the
    /// ring's right-hand side. `left` false goes against the line's direction.
    RingView side(bool left);

  private:
    using Cap = Capsule::Cap;

    void add(const JWRawPoint& p);
    void addCap(const Cap& cap);
    /// Where the two sides of a notch may be cut at their crossing: wherever they reach it, only
    /// where what that cuts off lies in both strips, or never.
    enum class Cut { Anywhere, WithinStrips, Never };
    static bool isOuter(const Cap& in, const Cap& out);
    void addCorner(const Cap& in, const Cap& out, Cut cut);
    void addArc(const Cap& in, const Cap& out, double turn);
    void addNotch(const Cap& in, const Cap& out, Cut cut);
    RingView ring();

    std::vector<Capsule> m_capsules;
    std::vector<JWRawPoint> m_ring;
};

}  // namespace jws::detail

#endif  // JW_BUFFER_OFFSET_LOOP_H
