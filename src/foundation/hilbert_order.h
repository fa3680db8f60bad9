// SPDX-License-Identifier: MIT
//
// Hilbert's curve: an order of places in which neighbours are neighbours in the plane.
//
// The curve visits the quadrants of a square one after the other, and within each of them those of
// the quadrant, mirrored or turned. How a quadrant lies is one of four states, so four bits of both
// coordinates and the state give eight bits of the index and the next state: a table has them all.
#ifndef JW_FOUNDATION_HILBERT_ORDER_H
#define JW_FOUNDATION_HILBERT_ORDER_H

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <utility>
#include <vector>

#include "jw_envelop.h"

namespace jws::detail {

/// What four bits of x and y lead to, by state, x and y: eight bits of the index, and the next
/// state above them. A state is 1 where coordinates are mirrored, plus 2 where they are swapped.
constexpr std::array<std::uint16_t, 4 * 16 * 16> hilbertSteps() {
    std::array<std::uint16_t, 4 * 16 * 16> steps{};
    for (unsigned i = 0; i < steps.size(); ++i) {
        unsigned state = i >> 8, index = 0;
        for (unsigned bit = 4; bit-- > 0;) {
            const unsigned mirror = state & 1;
            const unsigned x = ((i >> (bit + 4)) & 1) ^ mirror;
            const unsigned y = ((i >> bit) & 1) ^ mirror;
            const unsigned right = (state & 2) != 0 ? y : x;
            const unsigned upper = (state & 2) != 0 ? x : y;
            index = 4 * index + ((3 * right) ^ upper);
            if (upper == 0) state ^= 2 + right;
        }
        steps[i] = static_cast<std::uint16_t>((state << 8) | index);
    }
    return steps;
}
inline constexpr auto kHilbertSteps = hilbertSteps();

/// The place of a cell of a 65536 x 65536 grid along Hilbert's curve.
inline std::uint32_t hilbertIndex(std::uint32_t x, std::uint32_t y) {
    std::uint32_t index = 0, state = 0;
    for (int shift = 12; shift >= 0; shift -= 4) {
        const std::uint32_t step =
            kHilbertSteps[(state << 8) | (((x >> shift) & 15u) << 4) | ((y >> shift) & 15u)];
        index = (index << 8) | (step & 0xFFu);
        state = step >> 8;
    }
    return index;
}

/// Scales the middle of an interval to a cell of the grid.
inline std::uint32_t hilbertCell(double low, double high, double from, double to) {
    const double extent = 0.5 * to - 0.5 * from;
    const double share = extent > 0 ? (0.25 * low + 0.25 * high - 0.5 * from) / extent : 0;
    return static_cast<std::uint32_t>(65535.0 * std::min(std::max(share, 0.0), 1.0));
}

using HilbertPlace = std::pair<std::uint32_t, int>;

/// Sorts by place, those at one place by position; `order` comes sorted by position. Large lists by
/// counting, eleven bits at a time.
inline void sortPlaces(std::vector<HilbertPlace>& order) {
    constexpr std::size_t few = 512, digits = 1u << 11;
    if (order.size() < few) return std::sort(order.begin(), order.end());
    std::vector<HilbertPlace> sorted(order.size());
    for (int shift = 0; shift < 32; shift += 11) {
        std::array<std::size_t, digits + 1> first{};
        const auto digit = [&](const HilbertPlace& p) { return (p.first >> shift) % digits; };
        for (const HilbertPlace& place : order) ++first[digit(place) + 1];
        for (std::size_t d = 0; d < digits; ++d) first[d + 1] += first[d];
        for (const HilbertPlace& place : order) sorted[first[digit(place)]++] = place;
        order.swap(sorted);
    }
}

/// Sorts positions of rectangles along Hilbert's curve through their middles, so that neighbours in
/// the order are neighbours in the plane; those in one cell of a 65536 x 65536 grid by position.
inline void sortAlongHilbertCurve(const std::vector<JWEnvelop>& envelops,
                                  std::vector<int>& positions) {
    JWEnvelop extent = JWEnvelop::invalid();
    for (const int position : positions) {
        extent.inflates_to_contain(envelops[static_cast<std::size_t>(position)]);
    }
    if (!std::is_sorted(positions.begin(), positions.end()))
        std::sort(positions.begin(), positions.end());
    std::vector<HilbertPlace> order;
    order.reserve(positions.size());
    for (const int position : positions) {
        const JWEnvelop& e = envelops[static_cast<std::size_t>(position)];
        order.emplace_back(hilbertIndex(hilbertCell(e.minX, e.maxX, extent.minX, extent.maxX),
                                        hilbertCell(e.minY, e.maxY, extent.minY, extent.maxY)),
                           position);
    }
    sortPlaces(order);
    for (std::size_t i = 0; i < order.size(); ++i) positions[i] = order[i].second;
}

}  // namespace jws::detail

#endif  // JW_FOUNDATION_HILBERT_ORDER_H
