// SPDX-License-Identifier: MIT
#ifndef JW_BOOLEAN_RING_GROUPING_H
#define JW_BOOLEAN_RING_GROUPING_H

#include <vector>

#include "jw_geometry.h"

namespace jws::detail {

/// What becomes of a hole that lies in no other ring.
enum class Orphans { Drop, JoinFirstRing };

/// Builds one polygon of each outer ring (flag 0) and the holes whose parent it is, both in ring
/// order. A hole's parent is the first other ring, hole or not, that it lies within, decided
/// without rounding; a hole in a hole is lost. The rings do not cross. Their envelopes must be up
/// to date; those of the result are.
JWMultiPolygon groupByContainment(std::vector<JWRing>&& rings, const std::vector<int>& flags,
                                  Orphans orphans);

/// Which corners of a hole are looked at: the first one, or the vertex n/2 (rounded up, of n
/// stored) as well.
enum class HoleCorners { First, FirstAndMiddle };

/// Builds one polygon of each outer ring, in order, and the holes that lie in it. A hole goes to
/// the first outer ring that one of the corners looked at lies strictly inside, decided without
/// rounding; a hole that fits nowhere is dropped. Takes the rings over and leaves both lists empty.
JWMultiPolygon groupFirstFit(std::vector<JWRing>& outers, std::vector<JWRing>& holes,
                             HoleCorners corners = HoleCorners::FirstAndMiddle);

}  // namespace jws::detail

#endif  // JW_BOOLEAN_RING_GROUPING_H
