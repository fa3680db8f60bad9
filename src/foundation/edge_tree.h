// SPDX-License-Identifier: MIT
//
// EdgeTree: rectangles over the edges of one point list, for questions that would otherwise visit
// every edge (a point against a ring, many times) or every pair of edges (a line against itself).
//
// The idea: consecutive edges of a line lie near each other, so the list itself is a good order for
// a tree. Eight edges make a block, eight blocks a block of the next level, and so on; each block
// keeps the rectangle around its edges; the search for pairs adds one along its longest edge, for
// hatching and spikes. Nothing is sorted and the answer never depends on the tree: what it leaves
// out are edges whose rectangles cannot matter to the caller.
//
// Cost: building O(n), O(n log n) for pairs. A row query visits the blocks that the row crosses.
// The search for pairs is about O((n + k) log n), where k counts the pairs that are handed out; a
// list in which far-off neighbours in space are common at every scale can be worse. A coordinate
// that is not a number widens no rectangle.
#ifndef JW_FOUNDATION_EDGE_TREE_H
#define JW_FOUNDATION_EDGE_TREE_H

#include <algorithm>
#include <cmath>
#include <limits>
#include <vector>

#include "foundation/oriented_box.h"
#include "jw_envelop.h"

namespace jws::detail {

class EdgeTree {
  public:
    /// Views `edgeCount` + 1 points, which must stay in place and unchanged.
    EdgeTree(const JWRawPoint* points, int edgeCount) : m_points(points), m_edgeCount(edgeCount) {
        if (edgeCount <= 0) return;
        int count = blocksOf(edgeCount);
        size_t total = static_cast<size_t>(count);
        for (int n = count; n > 1;) total += static_cast<size_t>(n = blocksOf(n));
        m_boxes.reserve(total);
        m_levels.push_back({0, count});
        for (int i = 0; i < count; ++i) m_boxes.push_back(edgeBlockBox(i));
        while (count > 1) {
            const Level below = m_levels.back();
            count = blocksOf(below.count);
            m_levels.push_back({m_boxes.size(), count});
            for (int i = 0; i < count; ++i) {
                Box box;
                for (int k = i * kFan; k < std::min((i + 1) * kFan, below.count); ++k)
                    box.add(m_boxes[below.first + static_cast<size_t>(k)]);
                m_boxes.push_back(box);
            }
        }
    }

    /// Calls `visit(i)` for every edge i, in order, whose y range may hold `y`, until it returns
    /// true; tells whether it did. Ranges are widened by the rounding of a computed foot point, so
    /// that no edge at distance 0 by the arithmetic is left out.
    template <class Visit>
    bool visitRow(double y, Visit&& visit) const {
        return !m_levels.empty() && rowIn(m_levels.size() - 1, 0, y, visit);
    }

    /// Calls `visit(i, j)` for pairs i < j of edges until it returns true; tells whether it did.
    /// Every pair for which `intersectSegments` finds a common point is among them; left out are
    /// pairs whose rectangles are apart. The order of the pairs is fixed.
    template <class Visit>
    bool visitPairs(Visit&& visit) const {
        if (m_levels.empty()) return false;
        PairSearch<Visit> search{*this, orientedBoxes(), extent(), visit};
        return search.within(m_levels.size() - 1, 0, 0);
    }

  private:
    static constexpr int kFan = 8;

    struct Box {
        double minX = std::numeric_limits<double>::infinity(), minY = minX;
        double maxX = -minX, maxY = -minX;

        void add(const JWRawPoint& p) {
            if (p.x < minX) minX = p.x;
            if (p.x > maxX) maxX = p.x;
            if (p.y < minY) minY = p.y;
            if (p.y > maxY) maxY = p.y;
        }
        void add(const Box& o) {
            minX = std::min(minX, o.minX);
            minY = std::min(minY, o.minY);
            maxX = std::max(maxX, o.maxX);
            maxY = std::max(maxY, o.maxY);
        }
        bool meets(const Box& o) const {
            return (minX <= o.maxX) & (maxX >= o.minX) & (minY <= o.maxY) & (maxY >= o.minY);
        }
        bool rowMayHold(double y) const {
            const double slack = 1e-150 + 4e-15 * (std::fabs(minY) + std::fabs(maxY));
            return y - maxY <= slack && minY - y <= slack;
        }
    };

    struct Level {
        size_t first;
        int count;
    };

    static int blocksOf(int n) { return n / kFan + (n % kFan != 0); }

    const Box& boxAt(size_t level, int i) const {
        return m_boxes[m_levels[level].first + static_cast<size_t>(i)];
    }

    int endOfBlock(size_t level, int block) const {
        const int count = level == 0 ? m_edgeCount : m_levels[level - 1].count;
        return block < count / kFan ? (block + 1) * kFan : count;
    }

    Box edgeBox(int i) const {
        Box box;
        box.add(m_points[i]);
        box.add(m_points[i + 1]);
        return box;
    }

    Box edgeBlockBox(int block) const {
        Box box;
        const int end = endOfBlock(0, block);
        for (int i = block * kFan; i <= end; ++i) box.add(m_points[i]);
        return box;
    }

    template <class Visit>
    bool rowIn(size_t level, int block, double y, Visit& visit) const {
        if (!boxAt(level, block).rowMayHold(y)) return false;
        const int end = endOfBlock(level, block);
        for (int i = block * kFan; i < end; ++i) {
            if (level > 0 ? rowIn(level - 1, i, y, visit) : edgeBox(i).rowMayHold(y) && visit(i))
                return true;
        }
        return false;
    }

    /// Bounds the distance of every coordinate from the first point.
    double extent() const {
        const Box& root = m_boxes.back();
        return (root.maxX - root.minX) + (root.maxY - root.minY);
    }

    /// One per block, in the order of `m_boxes`.
    std::vector<OrientedBox> orientedBoxes() const {
        std::vector<OrientedBox> boxes;
        boxes.reserve(m_boxes.size());
        long long edges = kFan;  // of a whole block
        for (const Level& level : m_levels) {
            for (int i = 0; i < level.count; ++i) {
                const long long first = i * edges;
                const long long end = std::min<long long>(first + edges, m_edgeCount);
                boxes.push_back(OrientedBox::around(
                    m_points + first, static_cast<int>(end - first) + 1, m_points[0]));
            }
            edges *= kFan;
        }
        return boxes;
    }

    template <class Visit>
    struct PairSearch {
        const EdgeTree& tree;
        const std::vector<OrientedBox> oriented;
        const double extent;
        Visit& visit;

        bool within(size_t level, int a, int b) const {
            if (a != b && apart(level, a, b)) return false;
            if (level == 0) return edges(a, b);
            const int endA = tree.endOfBlock(level, a);
            const int endB = tree.endOfBlock(level, b);
            for (int i = a * kFan; i < endA; ++i)
                for (int j = a == b ? i : b * kFan; j < endB; ++j)
                    if (within(level - 1, i, j)) return true;
            return false;
        }

        bool apart(size_t level, int a, int b) const {
            const size_t i = tree.m_levels[level].first + static_cast<size_t>(a);
            const size_t j = tree.m_levels[level].first + static_cast<size_t>(b);
            return !tree.m_boxes[i].meets(tree.m_boxes[j]) ||
                   oriented[i].clearlyApart(oriented[j], extent);
        }

        bool edges(int a, int b) const {
            const Box& boxA = tree.boxAt(0, a);
            Box near[kFan];
            int index[kFan];
            int count = 0;
            const int endB = tree.endOfBlock(0, b);
            for (int j = b * kFan; j < endB; ++j) {
                const Box box = tree.edgeBox(j);
                if (!box.meets(boxA)) continue;
                near[count] = box;
                index[count++] = j;
            }
            const int endA = tree.endOfBlock(0, a);
            for (int i = a * kFan; i < endA && count > 0; ++i) {
                const Box box = tree.edgeBox(i);
                for (int k = 0; k < count; ++k)
                    if (index[k] > i && box.meets(near[k]) && visit(i, index[k])) return true;
            }
            return false;
        }
    };

    const JWRawPoint* m_points;
    int m_edgeCount;
    std::vector<Box> m_boxes;
    std::vector<Level> m_levels;
};

}  // namespace jws::detail

#endif  // JW_FOUNDATION_EDGE_TREE_H
