// SPDX-License-Identifier: MIT
//
// The least distance between two lists of points or segments, without visiting all pairs.
//
// Stated is the minimum over all pairs in the order of both lists, the last one of equal ones. Two
// trees over the lists leave out pairs whose rectangles are clearly farther apart than the least
// distance so far; among equal ones the pair is chosen by its numbers, so that the answer is that
// of all pairs, bit for bit.
#ifndef JW_ANALYSIS_NEAREST_SEGMENT_LISTS_H
#define JW_ANALYSIS_NEAREST_SEGMENT_LISTS_H

#include <algorithm>
#include <cmath>
#include <utility>
#include <vector>

#include "analysis/nearest/segment_tree.h"
#include "analysis/nearest/stated_distance.h"

namespace jws::detail {

/// Appends the segments of a line or ring.
inline void appendSegments(const JWRawPoint* points, int n, Segments& pieces) {
    if (n < 2) return;
    const std::size_t before = pieces.size();
    pieces.resize(before + static_cast<std::size_t>(n) - 1);
    for (int i = 0; i + 1 < n; ++i)
        pieces[before + static_cast<std::size_t>(i)] = {points[i], points[i + 1]};
}

inline JWEnvelop boxAround(const Segments& pieces) {
    JWEnvelop box = JWEnvelop::invalid();
    for (const Segment& piece : pieces) box.inflates_to_contain(boxOf(piece));
    return box;
}

/// A bound on distances by rectangles that stays below every computed distance: computed feet may
/// be off by some units in the last place of the coordinates.
class BoxDistance {
  public:
    /// `extent` holds all coordinates that will be asked for.
    explicit BoxDistance(const JWEnvelop& extent)
        : m_slack(2e-14 * std::max({std::fabs(extent.minX), std::fabs(extent.minY),
                                    std::fabs(extent.maxX), std::fabs(extent.maxY)})) {}

    double operator()(const JWEnvelop& a, const JWEnvelop& b) const {
        const double x = std::max({a.minX - b.maxX, b.minX - a.maxX, 0.0});
        const double y = std::max({a.minY - b.maxY, b.minY - a.maxY, 0.0});
        return (1 - 1e-14) * std::sqrt(x * x + y * y) - m_slack;
    }

  private:
    double m_slack;
};

/// Which of equal candidates a search keeps.
enum class OfEqual { First, Last };

/// The least of candidates that come in any order: of equal ones the first or last by its number.
template <class Number>
class NumberedLeast {
  public:
    explicit NumberedLeast(OfEqual keeps) : m_keepsLast(keeps == OfEqual::Last) {}

    void take(const Number& number, const Closest& candidate) {
        if (!(candidate.distance <= m_least.least())) return;
        const bool isTied = m_least.found() && candidate.distance == m_least.least();
        if (isTied && (m_number < number) != m_keepsLast) return;
        m_least.take(candidate);
        m_number = number;
    }
    double least() const { return m_least.least(); }
    const LastLeast& result() const { return m_least; }

  private:
    bool m_keepsLast;
    LastLeast m_least;
    Number m_number{};
};

/// The least `measure(piece)`, a Closest from something in `box`, over the pieces of a tree, as far
/// as it is no more than `limit`.
template <class Measure>
LastLeast nearestPiece(const SegmentTree& tree, const JWEnvelop& box, double limit, OfEqual keeps,
                       const Measure& measure) {
    NumberedLeast<int> least(keeps);
    tree.search(
        box, [&] { return std::min(limit, least.least()); },
        [&](int place) { least.take(tree.number(place), measure(tree.piece(place))); });
    return least.result();
}

/// Below this number of pairs all of them are measured without a tree.
constexpr std::size_t kFewPairs = 2000;

/// The last least of `measure(i, j)`, a Closest, over all pairs of pieces of two trees.
template <class Measure>
LastLeast leastOfPairs(const SegmentTree& a, const SegmentTree& b, const Measure& measure) {
    NumberedLeast<std::pair<int, int>> least(OfEqual::Last);
    a.searchPairs(
        b, [&] { return least.least(); },
        [&](int i, int j) {
            least.take({a.number(i), b.number(j)}, measure(a.piece(i), b.piece(j)));
        });
    return least.result();
}

inline bool areFewPairs(std::size_t a, std::size_t b) {
    return a <= kFewPairs && a * b <= kFewPairs;
}

/// The same for two lists.
template <class Measure>
LastLeast leastOfPairs(const Segments& a, const Segments& b, const Measure& measure) {
    if (!areFewPairs(a.size(), b.size()))
        return leastOfPairs(SegmentTree(a), SegmentTree(b), measure);
    LastLeast least;
    for (const Segment& i : a)
        for (const Segment& j : b) least.take(measure(i, j));
    return least;
}

}  // namespace jws::detail

#endif  // JW_ANALYSIS_NEAREST_SEGMENT_LISTS_H
