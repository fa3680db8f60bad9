// SPDX-License-Identifier: MIT
//
// SharedLines: the boundaries of polygons taken apart into lines, so that what several polygons run
// along is there once. Who changes the lines (simplifies them, say) and puts the rings together
// again changes all neighbours alike.
#ifndef JW_CONVERT_SHARED_LINES_H
#define JW_CONVERT_SHARED_LINES_H

#include <cstddef>
#include <vector>

#include "foundation/ring_set.h"

namespace jws::detail {

/// A range of a list that another object keeps.
template <class T>
struct ListView {
    const T* first;
    const T* last;

    const T* begin() const { return first; }
    const T* end() const { return last; }
    std::size_t size() const { return static_cast<std::size_t>(last - first); }
    const T& operator[](std::size_t i) const { return first[i]; }
};

/// Lists of one kind, all in one array.
template <class T>
struct ListOfLists {
    std::vector<T> members;
    std::vector<std::size_t> ends;  ///< where each list ends in `members`

    std::size_t count() const { return ends.size(); }
    ListView<T> operator[](std::size_t i) const {
        return {members.data() + (i == 0 ? 0 : ends[i - 1]), members.data() + ends[i]};
    }
    void endList() { ends.push_back(members.size()); }
};

/// A line as a ring runs along it.
struct LineStep {
    int line;
    bool forward;
};

/// The lines between polygons, and how the rings run along them.
struct SharedLines {
    /// At least two points each. A line begins and ends where three or more edges meet or a ring
    /// turns back, or it is closed (first point repeated) around a ring that meets no such place.
    /// It runs as the first ring that uses it does, and lines stand in that order: by ring, along
    /// the ring.
    ListOfLists<JWRawPoint> lines;
    /// For each line the polygons on its left and right, by the numbers that the rings were given
    /// with, each once and in the order of the rings. One or none on each side in a clean coverage.
    /// A polygon that runs along a line to and fro, as spikes do, stands on the side that prevails.
    /// Where neither does it stands on none, but the first one on both where there is nobody else.
    ListOfLists<int> left, right;
    /// For each ring the lines that make it up, in the order of its points, beginning with the
    /// first line that starts at or after its first point. A closed line may begin elsewhere. Empty
    /// for a ring of one place or with a coordinate that is not finite.
    ListOfLists<LineStep> rings;
};

/// Takes the boundaries of polygons apart.
///
/// A place on a line has the interior of its left polygons directly on its left, as each polygon by
/// itself sees it: the outer ring and the holes may run either way. A ring without an area counts
/// as running counter-clockwise, and a ring that crosses itself has its interior on one side all
/// along. Where polygons overlap, each line names the polygons that it is a
/// boundary of; boundaries that cross are not cut there, and nothing else is looked for around a
/// line. So every polygon is named along the whole of its boundary, and the rings put together from
/// their lines are the rings given, with vertices of others added where they lie on an edge.
///
/// \param owners     for each ring the number of its polygon
/// \param tolerance  layer units; vertices this near to one another become one (the first), and
///     edges are bent through vertices this near. 0 and less, NaN, and what is below the resolution
///     of the coordinates mean exact.
/// \param threads    of the team that shares the search out; the result is the same for any
///
/// Throws std::length_error for more points than an `int` counts, std::bad_alloc, and what a pulse
/// throws. Cost: O(n log n).
SharedLines findSharedLines(const RingViews& rings, const std::vector<int>& owners,
                            double tolerance, int threads = 1);

}  // namespace jws::detail

#endif  // JW_CONVERT_SHARED_LINES_H
