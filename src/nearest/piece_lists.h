// SPDX-License-Identifier: MIT
//
// The least distance between two lists of points or segments, without visiting all pairs.
//
// Stated is the minimum over all pairs in the order of both lists, the last one of equal ones. Two
// trees over the lists leave out pairs whose rectangles are clearly farther apart than the least
// distance so far; among equal ones the pair is chosen by its numbers, so that the answer is that
// of all pairs, bit for bit.
#ifndef JW_NEAREST_PIECE_LISTS_H
#define JW_NEAREST_PIECE_LISTS_H

#include <algorithm>
#include <cmath>
#include <utility>
#include <vector>

#include "boolean/packed_tree.h"
#include "nearest/stated_distance.h"

namespace jws::detail {

/// A point (both ends equal) or a segment.
struct Piece {
    JWRawPoint a;
    JWRawPoint b;
};
using Pieces = std::vector<Piece>;

inline JWEnvelop boxOf(const Piece& piece) {
    return {std::min(piece.a.x, piece.b.x), std::min(piece.a.y, piece.b.y),
            std::max(piece.a.x, piece.b.x), std::max(piece.a.y, piece.b.y)};
}

/// Appends the segments of a line or ring.
inline void appendSegments(const JWRawPoint* points, int n, Pieces& pieces) {
    for (int i = 0; i + 1 < n; ++i) pieces.push_back({points[i], points[i + 1]});
}

inline JWEnvelop boxAround(const Pieces& pieces) {
    JWEnvelop box = JWEnvelop::invalid();
    for (const Piece& piece : pieces) box.inflates_to_contain(boxOf(piece));
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

/// A tree over pieces; their numbers are its items. Segments that follow one another are not
/// sorted: the line keeps neighbours together.
inline PackedTree treeOver(const Pieces& pieces) {
    std::vector<JWEnvelop> boxes;
    boxes.reserve(pieces.size());
    std::size_t follow = 0;
    for (std::size_t i = 0; i < pieces.size(); ++i) {
        boxes.push_back(boxOf(pieces[i]));
        if (i > 0 && pieces[i].a == pieces[i - 1].b) ++follow;
    }
    return PackedTree(boxes, follow > pieces.size() / 2);
}

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

/// Pieces that are asked many times for the nearest of them.
class PieceTree {
  public:
    explicit PieceTree(Pieces pieces)
        : m_pieces(std::move(pieces)), m_tree(treeOver(m_pieces)), m_bound(m_tree.envelop()) {}

    /// The least `measure(piece)`, a Closest from something in `box`, as far as it is no more than
    /// `limit`.
    template <class Measure>
    LastLeast nearest(const JWEnvelop& box, double limit, OfEqual keeps,
                      const Measure& measure) const {
        NumberedLeast<int> least(keeps);
        m_tree.searchNearest(
            [&](const JWEnvelop& node) { return m_bound(node, box); },
            [&] { return std::min(limit, least.least()); },
            [&](int i) { least.take(i, measure(m_pieces[static_cast<std::size_t>(i)])); });
        return least.result();
    }

  private:
    Pieces m_pieces;
    PackedTree m_tree;
    BoxDistance m_bound;
};

/// Below this number of pairs all of them are measured without a tree.
constexpr std::size_t kFewPairs = 2000;

/// The last least of `measure(i, j)`, a Closest, over all pairs of two lists.
template <class Measure>
LastLeast leastOfPairs(const Pieces& a, const Pieces& b, const Measure& measure) {
    if (a.size() <= kFewPairs && a.size() * b.size() <= kFewPairs) {
        LastLeast least;
        for (const Piece& i : a)
            for (const Piece& j : b) least.take(measure(i, j));
        return least;
    }
    JWEnvelop extent = boxAround(a);
    extent.inflates_to_contain(boxAround(b));
    NumberedLeast<std::pair<int, int>> least(OfEqual::Last);
    treeOver(a).searchPairs(
        treeOver(b), BoxDistance(extent), [&] { return least.least(); },
        [&](int i, int j) {
            least.take({i, j},
                       measure(a[static_cast<std::size_t>(i)], b[static_cast<std::size_t>(j)]));
        });
    return least.result();
}

}  // namespace jws::detail

#endif  // JW_NEAREST_PIECE_LISTS_H
