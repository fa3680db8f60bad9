// SPDX-License-Identifier: MIT
//
// A tree over many points or segments, for the nearest of them to something, and for the nearest
// pair of two such lists.
//
// Eight neighbours are a leaf, eight leaves a node, eight nodes a node of the next level. A node
// keeps the rectangles of its members, and a leaf the ends of its pieces, coordinate by coordinate,
// so that the distances of all eight come out of a few instructions without a branch. They are
// compared by their squares: a search takes no root.
//
// Guarantee. What is left out is farther away than the limit by every distance that is computed:
// computed feet may be off by some units in the last place of the coordinates, which the limit is
// widened by. So the answer is that of measuring everything.
//
// Cost: O(n log n) to build, O(n) for pieces that follow one another, 45 bytes a piece. Searching
// changes nothing: any number of threads may search at once.
#ifndef JW_ANALYSIS_NEAREST_SEGMENT_TREE_H
#define JW_ANALYSIS_NEAREST_SEGMENT_TREE_H

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <vector>

#include "jw_envelop.h"

namespace jws::detail {

/// A point (both ends equal) or a segment.
struct Segment {
    JWRawPoint a;
    JWRawPoint b;
};
using Segments = std::vector<Segment>;

inline JWEnvelop boxOf(const Segment& piece) {
    return {std::min(piece.a.x, piece.b.x), std::min(piece.a.y, piece.b.y),
            std::max(piece.a.x, piece.b.x), std::max(piece.a.y, piece.b.y)};
}

class SegmentTree {
  public:
    SegmentTree() = default;
    /// Segments that follow one another, as the segments of a line do, keep their order.
    explicit SegmentTree(const Segments& pieces);
    /// The segments of a line, which must stay in place and unchanged.
    SegmentTree(const JWRawPoint* points, int count);

    int size() const { return m_size; }
    /// The piece at a place of the tree's order; neighbours lie near each other.
    Segment piece(int place) const {
        if (m_points != nullptr) return {m_points[place], m_points[place + 1]};
        const Leaf& leaf = m_leaves[leafOf(place)];
        const int i = place % kFan;
        return {{leaf.ax[i], leaf.ay[i]}, {leaf.bx[i], leaf.by[i]}};
    }
    /// Its position in the list.
    int number(int place) const {
        return m_numbers.empty() ? place : m_numbers[static_cast<std::size_t>(place)];
    }

    /// Calls `visit(place)` for the pieces that may lie within `limit()` of `box`, leaves and nodes
    /// that are near first. The limit is asked again before each step; one that is low from the
    /// start saves most of the search.
    template <class Limit, class Visit>
    void search(const JWEnvelop& box, const Limit& limit, Visit&& visit) const {
        const double slack = std::max(m_slack, slackOf(box));
        if (m_size > 0) searchNode(m_levels.size() - 1, 0, {box, slack}, limit, visit);
    }
    /// Calls `visit(place, placeInOther)` for the pairs of pieces that may lie within `limit()`.
    template <class Limit, class Visit>
    void searchPairs(const SegmentTree& other, const Limit& limit, Visit&& visit) const {
        if (m_size == 0 || other.m_size == 0) return;
        const double slack = std::max(m_slack, other.m_slack);
        PairSearch<Limit, Visit>{*this, other, slack, limit, visit}.within(
            {m_levels.size(), 0, m_box}, {other.m_levels.size(), 0, other.m_box});
    }

  private:
    static constexpr int kFan = 8;
    /// The squares of the distances of eight things.
    struct Squares {
        double of[kFan];
    };

    // One and the same loop for all eight, which compilers make vector instructions of.
    /// The rectangles of the members of a node.
    struct Node {
        double minX[kFan], minY[kFan], maxX[kFan], maxY[kFan];

        Squares squares(const JWEnvelop& box) const {
            Squares squares;
            for (int i = 0; i < kFan; ++i) {
                const double x = positive(minX[i] - box.maxX) + positive(box.minX - maxX[i]);
                const double y = positive(minY[i] - box.maxY) + positive(box.minY - maxY[i]);
                squares.of[i] = x * x + y * y;
            }
            return squares;
        }
        JWEnvelop box(std::size_t i) const { return {minX[i], minY[i], maxX[i], maxY[i]}; }
        void setBox(std::size_t i, const JWEnvelop& box) {
            minX[i] = box.minX;
            minY[i] = box.minY;
            maxX[i] = box.maxX;
            maxY[i] = box.maxY;
        }
    };
    struct Leaf {
        double ax[kFan], ay[kFan], bx[kFan], by[kFan];

        Squares squares(const JWEnvelop& box) const {
            Squares squares;
            for (int i = 0; i < kFan; ++i) {
                const double x = positive(lesser(ax[i], bx[i]) - box.maxX) +
                                 positive(box.minX - greater(ax[i], bx[i]));
                const double y = positive(lesser(ay[i], by[i]) - box.maxY) +
                                 positive(box.minY - greater(ay[i], by[i]));
                squares.of[i] = x * x + y * y;
            }
            return squares;
        }
        void setPiece(int i, const Segment& piece) {
            ax[i] = piece.a.x;
            ay[i] = piece.a.y;
            bx[i] = piece.b.x;
            by[i] = piece.b.y;
        }
    };
    /// Nodes [first, first + count) of `m_nodes` are one level.
    struct Level {
        std::size_t first;
        std::size_t count;
    };

    // As std::min and std::max, also with NaN.
    static double lesser(double a, double b) { return b < a ? b : a; }
    static double greater(double a, double b) { return a < b ? b : a; }
    static double positive(double gap) { return gap > 0 ? gap : 0; }

    static std::size_t leafOf(int place) { return static_cast<std::size_t>(place / kFan); }
    static std::size_t groupsOf(std::size_t n) { return (n + kFan - 1) / kFan; }
    std::size_t leafCount() const { return groupsOf(static_cast<std::size_t>(m_size)); }
    int countIn(std::size_t leaf) const {
        return std::min(kFan, m_size - static_cast<int>(leaf) * kFan);
    }
    /// `made` is where the leaf of a line is made, if it is one.
    const Leaf& leafAt(std::size_t i, Leaf& made) const {
        if (m_points == nullptr) return m_leaves[i];
        const int first = static_cast<int>(i) * kFan, count = countIn(i);
        for (int k = 0; k < kFan; ++k) made.setPiece(k, piece(first + std::min(k, count - 1)));
        return made;
    }
    /// The members of a node on a level.
    std::size_t countIn(std::size_t level, std::size_t node) const {
        const std::size_t below = level == 0 ? leafCount() : m_levels[level - 1].count;
        return std::min<std::size_t>(kFan, below - node * kFan);
    }
    const Node& nodeAt(std::size_t level, std::size_t i) const {
        return m_nodes[m_levels[level].first + i];
    }

    /// What is searched around, and by how much distances between it and the pieces may be off.
    struct Around {
        const JWEnvelop& box;
        double slack;
    };
    /// How far rounding may take a distance to something in a rectangle.
    static double slackOf(const JWEnvelop& box) {
        return 2e-14 * std::max({std::fabs(box.minX), std::fabs(box.minY), std::fabs(box.maxX),
                                 std::fabs(box.maxY)});
    }
    /// Squares up to this may belong to a distance up to `limit`.
    static double reach(double limit, double slack) {
        const double widened = (limit + slack) * (1 + 2e-14);
        return widened * widened;
    }

    /// Members of a node in the order of their distances.
    class NearMembers {
      public:
        struct Member {
            double square;
            std::size_t index;
        };
        NearMembers(const Squares& squares, std::size_t count, double most) {
            for (std::size_t i = 0; i < count; ++i)
                if (squares.of[i] <= most) add({squares.of[i], i});
        }
        const Member* begin() const { return m_members; }
        const Member* end() const { return m_members + m_count; }

      private:
        void add(const Member& member) {
            std::size_t at = m_count++;
            for (; at > 0 && m_members[at - 1].square > member.square; --at)
                m_members[at] = m_members[at - 1];
            m_members[at] = member;
        }
        Member m_members[kFan];
        std::size_t m_count = 0;
    };

    template <class Limit, class Visit>
    void searchNode(std::size_t level, std::size_t node, const Around& around, const Limit& limit,
                    Visit& visit) const {
        const Squares squares = nodeAt(level, node).squares(around.box);
        for (const auto& member :
             NearMembers(squares, countIn(level, node), reach(limit(), around.slack))) {
            if (!(member.square <= reach(limit(), around.slack))) return;
            const std::size_t below = node * kFan + member.index;
            level == 0 ? searchLeaf(below, around, limit, visit)
                       : searchNode(level - 1, below, around, limit, visit);
        }
    }

    template <class Limit, class Visit>
    void searchLeaf(std::size_t leaf, const Around& around, const Limit& limit,
                    Visit& visit) const {
        Leaf made;
        const Squares squares = leafAt(leaf, made).squares(around.box);
        const int first = static_cast<int>(leaf) * kFan, count = countIn(leaf);
        double most = reach(limit(), around.slack);
        for (int i = 0; i < count; ++i) {
            if (!(squares.of[i] <= most)) continue;
            visit(first + i);
            most = reach(limit(), around.slack);
        }
    }

    /// A leaf (at height 0) or node of one of two trees.
    struct Member {
        std::size_t height, index;
        JWEnvelop box;
    };

    template <class Limit, class Visit>
    struct PairSearch {
        const SegmentTree &a, &b;
        double slack;
        const Limit& limit;
        Visit& visit;

        /// Goes on with the members of the higher one of two, the near ones first.
        void within(const Member& inA, const Member& inB) const {
            if (inA.height == 0 && inB.height == 0) return leaves(inA, inB);
            const bool opensA = inA.height >= inB.height;
            const SegmentTree& tree = opensA ? a : b;
            const Member &opened = opensA ? inA : inB, &other = opensA ? inB : inA;
            const std::size_t level = opened.height - 1;
            const Node& node = tree.nodeAt(level, opened.index);
            const Squares squares = node.squares(other.box);
            const std::size_t count = tree.countIn(level, opened.index);
            for (const auto& near : NearMembers(squares, count, reach(limit(), slack))) {
                if (!(near.square <= reach(limit(), slack))) return;
                const Member member{level, opened.index * kFan + near.index, node.box(near.index)};
                opensA ? within(member, inB) : within(inA, member);
            }
        }
        void leaves(const Member& inA, const Member& inB) const {
            Leaf made;
            const Squares squares = a.leafAt(inA.index, made).squares(inB.box);
            const int first = static_cast<int>(inA.index) * kFan, count = a.countIn(inA.index);
            for (int i = 0; i < count; ++i) {
                if (!(squares.of[i] <= reach(limit(), slack))) continue;
                const auto visitPair = [&](int j) { visit(first + i, j); };
                b.searchLeaf(
                    inB.index, {boxOf(a.piece(first + i)), slack}, [&] { return limit(); },
                    visitPair);
            }
        }
    };

    void setLeaves(const Segments& pieces);
    void setNodes();
    void addLevel();
    JWEnvelop boxOfLeaf(std::size_t leaf) const;
    JWEnvelop boxOfNode(std::size_t level, std::size_t node) const;

    int m_size = 0;
    const JWRawPoint* m_points = nullptr;  ///< of a line; there are no leaves then
    std::vector<Leaf> m_leaves;
    std::vector<Node> m_nodes;  ///< level by level, the root last
    std::vector<Level> m_levels;
    std::vector<int> m_numbers;  ///< empty for pieces in their own order
    JWEnvelop m_box = JWEnvelop::invalid();
    double m_slack = 0;
};

}  // namespace jws::detail

#endif  // JW_ANALYSIS_NEAREST_SEGMENT_TREE_H
