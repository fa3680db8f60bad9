// SPDX-License-Identifier: MIT
//
// Families of random pairs of operands, each aimed at one way in which a clipping engine fails.
// Operands are read by the even-odd rule. Most pairs are small, so that many of them run; now and
// then one has hundreds or thousands of corners, for what an engine does differently with many.
#ifndef JW_TESTS_SUPPORT_CLIP_FAMILIES_H
#define JW_TESTS_SUPPORT_CLIP_FAMILIES_H

#include <cstdint>
#include <string>

#include "support/random_rings.h"

namespace jwtest {

struct ClipFamily {
    const char* name;
    RingPair (*make)(RandomRings& random);
};

/// All families: `shapeFamilies`, then `degenerateFamilies`.
const std::vector<ClipFamily>& clipFamilies();

/// What layers hold: outlines, near-copies, shared borders, holes, islands, boards, combs.
std::vector<ClipFamily> shapeFamilies();
/// What layers should not hold: self-crossings, spikes, bundles, neighbouring doubles, extremes.
std::vector<ClipFamily> degenerateFamilies();

/// Returns the family of this name, null if there is none.
const ClipFamily* familyNamed(const std::string& name);

/// The generator of one pair of a family: the same for the same three on every system.
RandomRings generatorOf(const ClipFamily& family, std::uint64_t seed, std::uint64_t pair);

}  // namespace jwtest

#endif  // JW_TESTS_SUPPORT_CLIP_FAMILIES_H
