// SPDX-License-Identifier: MIT
//
// PackedTree: a tree over many rectangles that are all known beforehand, for searches of any shape.
//
// The rectangles are sorted along Hilbert's curve; eight neighbours make a node, eight nodes a node
// of the next level, and so on, all in one array. Nothing is inserted later, so that there are no
// half-empty nodes and no pointers to follow. What a search looks for is the caller's: it says
// which rectangles may hold something, or how far from it a rectangle is.
//
// Cost: O(n log n) to build, 36 bytes and some for each rectangle. Searching changes nothing: any
// number of threads may search at once.
#ifndef JW_TREES_PACKED_TREE_H
#define JW_TREES_PACKED_TREE_H

#include <algorithm>
#include <cstddef>
#include <utility>
#include <vector>

#include "jw_envelop.h"

namespace jws::detail {

class PackedTree {
  public:
    PackedTree() = default;
    /// Items are the positions of `boxes`; those of invalid rectangles are left out. With `inOrder`
    /// neighbours in the list lie near each other already, as the segments of a line do, and
    /// nothing is sorted.
    explicit PackedTree(const std::vector<JWEnvelop>& boxes, bool inOrder = false);

    bool isEmpty() const { return m_items.empty(); }
    /// The rectangle around everything; invalid when empty.
    JWEnvelop envelop() const { return isEmpty() ? JWEnvelop::invalid() : m_boxes.back(); }
    /// The items in the order of the tree: neighbours lie near each other.
    const std::vector<int>& items() const { return m_items; }

    /// Calls `visit(item)` for the items whose rectangles, and those around them, satisfy
    /// `mayHold(rectangle)`, until it returns true; tells whether it did.
    template <class MayHold, class Visit>
    bool search(const MayHold& mayHold, Visit&& visit) const {
        return !isEmpty() && mayHold(m_boxes.back()) &&
               searchIn(m_levels.size() - 1, 0, mayHold, visit);
    }

    /// Calls `visit(item)` for the items that may lie nearer than `limit()`, of each node the near
    /// ones first.
    ///
    /// `bound(rectangle)` is no more than the measure of anything in the rectangle; `limit()` is
    /// asked again before each step, and what has a bound above it is left out. A limit that is low
    /// from the start saves most of the search.
    template <class Bound, class Limit, class Visit>
    void searchNearest(const Bound& bound, const Limit& limit, Visit&& visit) const {
        if (!isEmpty() && bound(m_boxes.back()) <= limit())
            searchNearestIn(m_levels.size() - 1, 0, bound, limit, visit);
    }

    /// Calls `visit(item, itemOfOther)` for the pairs that may lie nearer than `limit()`, near ones
    /// first as far as they are told apart by their nodes.
    ///
    /// `bound(rectangle, rectangleOfOther)` is no more than the measure of any pair in the two.
    template <class Bound, class Limit, class Visit>
    void searchPairs(const PackedTree& other, const Bound& bound, const Limit& limit,
                     Visit&& visit) const {
        if (isEmpty() || other.isEmpty()) return;
        PairSearch<Bound, Limit, Visit>{*this, other, bound, limit, visit}.within(
            {m_levels.size() - 1, 0}, {other.m_levels.size() - 1, 0});
    }

  private:
    static constexpr std::size_t kFan = 8;

    /// Rectangles [first, first + count) of `m_boxes` are one level.
    struct Level {
        std::size_t first;
        std::size_t count;
    };

    template <class MayHold, class Visit>
    bool searchIn(std::size_t level, std::size_t node, const MayHold& mayHold, Visit& visit) const {
        if (level == 0) return visit(m_items[node]);
        const Level& below = m_levels[level - 1];
        const std::size_t end = std::min((node + 1) * kFan, below.count);
        for (std::size_t i = node * kFan; i < end; ++i) {
            if (mayHold(m_boxes[below.first + i]) && searchIn(level - 1, i, mayHold, visit))
                return true;
        }
        return false;
    }

    /// A member of a node, and the bound of its rectangle.
    struct Member {
        double bound;
        std::size_t index;
    };

    /// A few members in the order of their bounds.
    class NearMembers {
      public:
        void add(const Member& member) {
            std::size_t at = m_count++;
            for (; at > 0 && m_members[at - 1].bound > member.bound; --at)
                m_members[at] = m_members[at - 1];
            m_members[at] = member;
        }
        const Member* begin() const { return m_members; }
        const Member* end() const { return m_members + m_count; }

      private:
        Member m_members[kFan];
        std::size_t m_count = 0;
    };

    template <class Bound, class Limit, class Visit>
    void searchNearestIn(std::size_t level, std::size_t node, const Bound& bound,
                         const Limit& limit, Visit& visit) const {
        if (level == 0) return visit(m_items[node]);
        const Level& below = m_levels[level - 1];
        const std::size_t end = std::min((node + 1) * kFan, below.count);
        NearMembers near;
        const double most = limit();
        for (std::size_t i = node * kFan; i < end; ++i) {
            const double least = bound(m_boxes[below.first + i]);
            if (least <= most) near.add({least, i});
        }
        for (const Member& member : near) {
            if (!(member.bound <= limit())) return;
            searchNearestIn(level - 1, member.index, bound, limit, visit);
        }
    }

    struct Node {
        std::size_t level, index;
    };
    const JWEnvelop& boxOf(const Node& node) const {
        return m_boxes[m_levels[node.level].first + node.index];
    }

    template <class Bound, class Limit, class Visit>
    struct PairSearch {
        const PackedTree &a, &b;
        const Bound& bound;
        const Limit& limit;
        Visit& visit;

        /// Goes on with the members of the node on the higher level, the near ones first.
        void within(const Node& nodeA, const Node& nodeB) const {
            if (nodeA.level == 0 && nodeB.level == 0)
                return visit(a.m_items[nodeA.index], b.m_items[nodeB.index]);
            const bool openA = nodeA.level >= nodeB.level;
            const PackedTree& tree = openA ? a : b;
            const Node& node = openA ? nodeA : nodeB;
            const std::size_t below = node.level - 1;
            const std::size_t first = node.index * kFan;
            const std::size_t end = std::min(first + kFan, tree.m_levels[below].count);
            NearMembers near;
            for (std::size_t i = first; i < end; ++i) {
                const JWEnvelop& box = tree.boxOf({below, i});
                near.add({openA ? bound(box, b.boxOf(nodeB)) : bound(a.boxOf(nodeA), box), i});
            }
            for (const Member& candidate : near) {
                if (!(candidate.bound <= limit())) return;
                const Node member{below, candidate.index};
                openA ? within(member, nodeB) : within(nodeA, member);
            }
        }
    };

    std::vector<int> m_items;
    std::vector<JWEnvelop> m_boxes;  ///< level by level, the items' own first, the root last
    std::vector<Level> m_levels;
};

}  // namespace jws::detail

#endif  // JW_TREES_PACKED_TREE_H
