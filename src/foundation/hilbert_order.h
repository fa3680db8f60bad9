// SPDX-License-Identifier: MIT
//
// Hilbert's curve: an order of places in which neighbours are neighbours in the plane.
#ifndef JW_FOUNDATION_HILBERT_ORDER_H
#define JW_FOUNDATION_HILBERT_ORDER_H

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <utility>
#include <vector>

#include "jw_envelop.h"

namespace jws::detail {

/// The place of a cell of a 65536 x 65536 grid along Hilbert's curve.
inline std::uint32_t hilbertIndex(std::uint32_t x, std::uint32_t y) {
    std::uint32_t index = 0;
    for (std::uint32_t side = 1u << 15; side > 0; side >>= 1) {
        const std::uint32_t right = (x & side) != 0 ? 1 : 0;
        const std::uint32_t upper = (y & side) != 0 ? 1 : 0;
        index += side * side * ((3 * right) ^ upper);
        if (upper == 0) {
            if (right == 1) {
                x = 0xFFFFu - x;
                y = 0xFFFFu - y;
            }
            std::swap(x, y);
        }
    }
    return index;
}

/// Scales the middle of an interval to a cell of the grid.
inline std::uint32_t hilbertCell(double low, double high, double from, double to) {
    const double extent = 0.5 * to - 0.5 * from;
    const double share = extent > 0 ? (0.25 * low + 0.25 * high - 0.5 * from) / extent : 0;
    return static_cast<std::uint32_t>(65535.0 * std::min(std::max(share, 0.0), 1.0));
}

/// Sorts positions of rectangles along Hilbert's curve through their middles, so that neighbours in
/// the order are neighbours in the plane; those in one cell of a 65536 x 65536 grid by position.
inline void sortAlongHilbertCurve(const std::vector<JWEnvelop>& envelops,
                                  std::vector<int>& positions) {
    JWEnvelop extent = JWEnvelop::invalid();
    for (const int position : positions) {
        extent.inflates_to_contain(envelops[static_cast<std::size_t>(position)]);
    }
    std::vector<std::pair<std::uint32_t, int>> order;
    order.reserve(positions.size());
    for (const int position : positions) {
        const JWEnvelop& e = envelops[static_cast<std::size_t>(position)];
        order.emplace_back(hilbertIndex(hilbertCell(e.minX, e.maxX, extent.minX, extent.maxX),
                                        hilbertCell(e.minY, e.maxY, extent.minY, extent.maxY)),
                           position);
    }
    std::sort(order.begin(), order.end());
    for (std::size_t i = 0; i < order.size(); ++i) positions[i] = order[i].second;
}

}  // namespace jws::detail

#endif  // JW_FOUNDATION_HILBERT_ORDER_H
