// SPDX-License-Identifier: MIT
#ifndef JW_TREES_ENVELOPE_CLUSTERS_H
#define JW_TREES_ENVELOPE_CLUSTERS_H

#include <cstddef>
#include <vector>

#include "foundation/parallel.h"
#include "jw_envelop.h"

namespace jws::detail {

/// Lists of positions, one behind the other.
struct PositionLists {
    std::vector<int> positions;
    std::vector<std::size_t> ends;  ///< of each list, in `positions`

    std::size_t count() const { return ends.size(); }
    const int* begin(std::size_t i) const { return positions.data() + (i == 0 ? 0 : ends[i - 1]); }
    const int* end(std::size_t i) const { return positions.data() + ends[i]; }
};

/// Splits rectangles into clusters: two are in one cluster when they meet, borders included, or are
/// joined by a chain of rectangles that meet. Invalid ones are in none. Clusters come in the order
/// of their first members, members in ascending order.
PositionLists clusterByContact(const std::vector<JWEnvelop>& envelops);
/// The same by a team, whose size does not matter for the result.
PositionLists clusterByContact(const Team& team, const std::vector<JWEnvelop>& envelops);

}  // namespace jws::detail

#endif  // JW_TREES_ENVELOPE_CLUSTERS_H
