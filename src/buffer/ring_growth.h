// SPDX-License-Identifier: MIT
//
// A ring's interior together with the band along the ring, or without it, from one side of the band
// alone.
//
// The sides of the capsules that lie away from the interior, strung together (offset_loop.h), wind
// once around the interior, once more around the rectangle between each segment and its side, and
// once more around the sector at each corner that points outward: at least once around each point
// of all these, and around nothing else. That is the interior together with the band, but for what
// only the capsules' far sides hold of it: there is nothing of the kind where segments are not very
// short and no two pieces of the boundary lie closer together, with their half circles' edges
// bulging less than a true arc, than the arc's edge is deep. The same line on the other side winds
// around what the band leaves of the interior. Where few segments are very short, their capsules
// and their neighbours' are united with what the line winds around.
//
// So neither the inner half of the band nor what is inside the ring is ever computed. Rings that
// meet themselves, and those of which the above is not certain, are not treated so.
#ifndef JW_BUFFER_RING_GROWTH_H
#define JW_BUFFER_RING_GROWTH_H

#include "buffer/outline_union.h"
#include "buffer/piece_union.h"

namespace jws::detail {

enum class RingSide {
    Outer,  ///< what the ring encloses, grown: an area
    Inner,  ///< what it encloses without the band: holes
};

/// Appends to `result`, unless the ring is one of those that the band has to be computed of: false.
/// `run` are the shapes along the ring, as one run. Throws ClipFailure and std::bad_alloc.
bool growRing(const Shapes& run, RingSide side, Outline& result);

}  // namespace jws::detail

#endif  // JW_BUFFER_RING_GROWTH_H
