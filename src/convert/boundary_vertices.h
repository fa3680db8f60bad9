// SPDX-License-Identifier: MIT
#ifndef JW_CONVERT_BOUNDARY_VERTICES_H
#define JW_CONVERT_BOUNDARY_VERTICES_H

#include <cstddef>
#include <vector>

#include "foundation/parallel.h"
#include "foundation/ring_set.h"

namespace jws::detail {

/// Rings as lists of numbered vertices: equal points have equal numbers, and where rings run along
/// one another they name the same vertices.
struct BoundaryVertices {
    std::vector<JWRawPoint> points;  ///< of the vertices, in the order of their first appearance
    std::vector<int> vertices;       ///< of all rings, one after the other, without closing points
    std::vector<std::size_t> ends;   ///< where each ring ends in `vertices`

    std::size_t ringCount() const { return ends.size(); }
    const int* begin(std::size_t ring) const {
        return vertices.data() + (ring == 0 ? 0 : ends[ring - 1]);
    }
    const int* end(std::size_t ring) const { return vertices.data() + ends[ring]; }
};

/// Numbers the vertices of rings and puts in those that lie on an edge of another ring, or within
/// `tolerance` of one. Rings of one place alone and rings with a coordinate that is not finite have
/// no vertices. Throws std::length_error for more points than an `int` counts, std::bad_alloc,
/// and what a pulse throws.
BoundaryVertices findBoundaryVertices(const RingViews& rings, double tolerance, const Team& team);

}  // namespace jws::detail

#endif  // JW_CONVERT_BOUNDARY_VERTICES_H
