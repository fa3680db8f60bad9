// SPDX-License-Identifier: MIT
//
// Areas of the four operations without an engine, and without anything in common with one: the
// plane is cut into vertical slabs at all ends and crossings of edges; within a slab edges do not
// cross, so that the area between neighbours is a trapezoid. Cubic, for small operands.
#ifndef JW_TESTS_SUPPORT_SLAB_AREAS_H
#define JW_TESTS_SUPPORT_SLAB_AREAS_H

#include "support/rings.h"

namespace jwtest {

/// Areas of A minus B, A and B, A xor B, A or B: in the order of the clipping engine's operations.
struct FourAreas {
    double of[4];
};

FourAreas slabAreas(const Rings& a, const Rings& b);

}  // namespace jwtest

#endif  // JW_TESTS_SUPPORT_SLAB_AREAS_H
