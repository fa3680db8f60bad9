// SPDX-License-Identifier: MIT
//
// Clusters of rectangles that meet.
//
// A cluster grows from its first member: search what meets a member, add it, search from there. A
// plain R-tree would hand out the same neighbours again and again, n² times where all rectangles
// overlap. Here what was found is taken out: each node of the tree counts what it still holds, and
// empty branches are not entered. So every rectangle is handed out once, and a search costs the way
// to what it finds. About O(n log n).
//
// The tree is packed: rectangles sorted by their middles into strips and tiles
// (sort-tile-recursive, Leutenegger, Lopez and Edgington 1997), eight to a leaf, and eight nodes to
// a node above.
#include "overlay/envelope_clusters.h"

#include <algorithm>
#include <cmath>

namespace jws::detail {
namespace {

constexpr std::size_t kFan = 8;

class ShrinkingTree {
  public:
    explicit ShrinkingTree(const std::vector<JWEnvelop>& envelops);

    bool holds(int position) const { return m_held[static_cast<std::size_t>(position)] != 0; }
    /// Takes out everything that meets `query` and appends it to `found`.
    void takeOut(const JWEnvelop& query, std::vector<int>& found) {
        if (!m_levels.empty()) takeOut(m_levels.size() - 1, 0, query, found);
    }

  private:
    struct Node {
        JWEnvelop box;
        int held;
    };

    void sortIntoTiles();
    void buildLevels();
    int takeOut(std::size_t level, std::size_t node, const JWEnvelop& query,
                std::vector<int>& found);

    const std::vector<JWEnvelop>& m_envelops;
    std::vector<int> m_order;
    std::vector<char> m_held;
    std::vector<std::vector<Node>> m_levels;  // leaves first
};

/// Half of each first: a sum may overflow.
double middleX(const JWEnvelop& e) { return 0.5 * e.minX + 0.5 * e.maxX; }
double middleY(const JWEnvelop& e) { return 0.5 * e.minY + 0.5 * e.maxY; }

ShrinkingTree::ShrinkingTree(const std::vector<JWEnvelop>& envelops)
    : m_envelops(envelops), m_held(envelops.size(), 0) {
    for (std::size_t i = 0; i < envelops.size(); ++i) {
        if (!envelops[i].isValid()) continue;
        m_held[i] = 1;
        m_order.push_back(static_cast<int>(i));
    }
    if (m_order.empty()) return;
    sortIntoTiles();
    buildLevels();
}

void ShrinkingTree::sortIntoTiles() {
    const auto by = [this](double (*middle)(const JWEnvelop&)) {
        return [this, middle](int i, int j) {
            const double a = middle(m_envelops[static_cast<std::size_t>(i)]);
            const double b = middle(m_envelops[static_cast<std::size_t>(j)]);
            return a != b ? a < b : i < j;
        };
    };
    const std::size_t count = m_order.size();
    std::sort(m_order.begin(), m_order.end(), by(middleX));
    const double leaves = std::ceil(static_cast<double>(count) / kFan);
    const auto strips = static_cast<std::size_t>(std::ceil(std::sqrt(leaves)));
    const std::size_t perStrip = (count + strips - 1) / strips;
    for (std::size_t first = 0; first < count; first += perStrip) {
        const std::size_t end = std::min(first + perStrip, count);
        std::sort(m_order.begin() + static_cast<std::ptrdiff_t>(first),
                  m_order.begin() + static_cast<std::ptrdiff_t>(end), by(middleY));
    }
}

void ShrinkingTree::buildLevels() {
    std::vector<Node> nodes;
    for (std::size_t i = 0; i < m_order.size(); ++i) {
        if (i % kFan == 0) nodes.push_back({JWEnvelop::invalid(), 0});
        nodes.back().box.inflates_to_contain(m_envelops[static_cast<std::size_t>(m_order[i])]);
        ++nodes.back().held;
    }
    for (;;) {
        m_levels.push_back(nodes);
        if (nodes.size() == 1) return;
        std::vector<Node> above;
        for (std::size_t i = 0; i < nodes.size(); ++i) {
            if (i % kFan == 0) above.push_back({JWEnvelop::invalid(), 0});
            above.back().box.inflates_to_contain(nodes[i].box);
            above.back().held += nodes[i].held;
        }
        nodes = std::move(above);
    }
}

int ShrinkingTree::takeOut(std::size_t level, std::size_t node, const JWEnvelop& query,
                           std::vector<int>& found) {
    Node& here = m_levels[level][node];
    if (here.held == 0 || here.box.isDisjoin(query)) return 0;
    const std::size_t below = level > 0 ? m_levels[level - 1].size() : m_order.size();
    const std::size_t end = std::min((node + 1) * kFan, below);
    int taken = 0;
    for (std::size_t i = node * kFan; i < end; ++i) {
        if (level > 0) {
            taken += takeOut(level - 1, i, query, found);
            continue;
        }
        const int position = m_order[i];
        if (!holds(position) || m_envelops[static_cast<std::size_t>(position)].isDisjoin(query)) {
            continue;
        }
        m_held[static_cast<std::size_t>(position)] = 0;
        found.push_back(position);
        ++taken;
    }
    here.held -= taken;
    return taken;
}

}  // namespace

PositionLists clusterByContact(const std::vector<JWEnvelop>& envelops) {
    ShrinkingTree tree(envelops);
    PositionLists clusters;
    std::vector<int>& members = clusters.positions;
    for (std::size_t i = 0; i < envelops.size(); ++i) {
        if (!tree.holds(static_cast<int>(i))) continue;
        const std::size_t first = members.size();
        tree.takeOut(envelops[i], members);
        for (std::size_t k = first; k < members.size(); ++k) {
            tree.takeOut(envelops[static_cast<std::size_t>(members[k])], members);
        }
        std::sort(members.begin() + static_cast<std::ptrdiff_t>(first), members.end());
        clusters.ends.push_back(members.size());
    }
    return clusters;
}

}  // namespace jws::detail
