// SPDX-License-Identifier: MIT
//
// Areas cut along lines: the engine arranges the outline and the lines together, and the faces of
// that which lie in the area are the pieces. The engine reads all points where they lie.
#ifndef JW_BOOLEAN_LINE_CUT_H
#define JW_BOOLEAN_LINE_CUT_H

#include "boolean/ring_clip.h"

namespace jws::detail {

/// Cuts an area, read by the even-odd rule, along lines into all the faces that they make of it
/// together with its outline: of each face the outer ring, then its holes, which start at a point
/// that the outer ring does not have. No contours when nothing is cut off: lines that end inside
/// cut only as far as they close a face. Errors as of `clipRings`. O((n + k) log n) as a rule for n
/// vertices and k crossings.
ClippedContours cutAlongLines(const RingViews& area, const RingViews& lines);

}  // namespace jws::detail

#endif  // JW_BOOLEAN_LINE_CUT_H
