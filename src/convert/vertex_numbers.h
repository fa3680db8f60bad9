// SPDX-License-Identifier: MIT
//
// The vertices of rings by number. Every point gets a number by a hash table; with a tolerance, a
// point within it of one that has a number already takes the nearest such number, found through a
// grid of cells as large as the tolerance. Points that keep a number of their own are therefore
// farther apart than the tolerance, and no point moves farther.
#ifndef JW_CONVERT_VERTEX_NUMBERS_H
#define JW_CONVERT_VERTEX_NUMBERS_H

#include "convert/boundary_vertices.h"

namespace jws::detail {

/// Numbers the vertices of rings: those that are equal alike, or with a tolerance above 0 those
/// that are near each other. Rings of one place alone and rings with a coordinate that is not
/// finite have no vertices. Throws std::length_error for more points than an `int` counts,
/// std::bad_alloc.
BoundaryVertices numberVertices(const RingViews& rings, double tolerance);

/// The tolerance, or 0 where it is none, no number, or below what the coordinates resolve.
double usableTolerance(const RingViews& rings, double tolerance);

}  // namespace jws::detail

#endif  // JW_CONVERT_VERTEX_NUMBERS_H
