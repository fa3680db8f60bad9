// SPDX-License-Identifier: MIT
#ifndef JW_OVERLAY_VALUE_GROUPS_H
#define JW_OVERLAY_VALUE_GROUPS_H

#include <string>
#include <vector>

#include "jw_feature.h"
#include "trees/envelope_clusters.h"

namespace jws::detail {

/// The values of some fields of a feature in one string: two features have equal strings exactly
/// when for each field both have no value, or both have equal ones: numbers as numbers (0 equals
/// −0, a NaN a NaN), all else by content.
std::string valueKey(const JWFeature& feature, const std::vector<int>& fields);

/// Splits each list into groups of equal keys: groups in the order of their first members, members
/// in the order of the list. `keys` is by position.
PositionLists groupByValue(const PositionLists& lists, const std::vector<std::string>& keys);

}  // namespace jws::detail

#endif  // JW_OVERLAY_VALUE_GROUPS_H
