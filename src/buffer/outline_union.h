// SPDX-License-Identifier: MIT
//
// The union of many areas that may lie anywhere.
//
// Areas whose rectangles do not meet those of others are left as they are. Of the others those are
// united that lie close together, thirty-two at a time, then the results, and so on: what is
// swallowed by its neighbours is gone before anything farther off is looked at. So a tangle of
// shapes that all overlap costs about as much as its parts, and never all pairs of edges. How areas
// are grouped depends on them alone, never on the team, so that the result does not either.
#ifndef JW_BUFFER_OUTLINE_UNION_H
#define JW_BUFFER_OUTLINE_UNION_H

#include <cstddef>
#include <vector>

#include "boolean/ring_clip.h"
#include "foundation/parallel.h"
#include "foundation/ring_set.h"

namespace jws::detail {

/// An area: rings that do not cross one another, interior on their right (outer rings clockwise,
/// holes counter-clockwise), with flags. All functions here keep to that.
using Outline = RingSet;

constexpr int kOutlinesAtOnce = 32;  // united in one go

/// The team, or just the caller for fewer tasks than it is worth to wake the others for.
inline const Team& teamFor(std::size_t tasks, std::size_t fewest, const Team& team) {
    static const Team alone(1);
    return tasks < fewest ? alone : team;
}

/// A result of the engine as an area.
Outline outlineOf(const ClippedContours& contours);

/// Appends a ring that may run the other way; its first point stays.
void addRing(const RingView& ring, bool reversed, int hole, Outline& outline);

/// Appends what a closed line, which may cross itself, winds around clockwise at least once. A line
/// that does not meet itself is handed on as it is. `others` are areas that count as well. Only
/// where `canUniteDirected`. Throws ClipFailure and std::bad_alloc.
void uniteWinding(const RingView& loop, const Outline& others, Outline& result);

/// Unites outer rings that may lie across one another, all at once. Throws ClipFailure and
/// std::bad_alloc.
Outline uniteAtOnce(const Outline& rings);

RingViews viewsOf(const Outline& area);
/// A ring set read by the even-odd rule, as an area.
Outline resolved(const RingViews& rings);

/// A ring set read by the even-odd rule, or an area as it stands.
struct SetToUnite {
    RingViews rings;
    bool isArea;
};
/// Unites ring sets; those that are no areas are resolved first.
Outline uniteRingSets(const std::vector<SetToUnite>& sets, const Team& team);

/// Unites areas. The rings of an area that meets no other are handed on as they are. Rings come
/// cluster by cluster, clusters in the order of their first areas.
Outline uniteOutlines(std::vector<Outline> outlines, const Team& team);

}  // namespace jws::detail

#endif  // JW_BUFFER_OUTLINE_UNION_H
