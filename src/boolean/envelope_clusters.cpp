// SPDX-License-Identifier: MIT
//
// Clusters of rectangles that meet.
//
// A cluster grows from its first member: search what meets a member, add it, search from there. A
// plain R-tree would hand out the same neighbours again and again, n² times where all rectangles
// overlap. Here what was found is taken out: each node of the tree keeps the rectangle around what
// it still holds, so that a search enters only where something is left to be found. Every rectangle
// is handed out once, and a search costs about the way to what it finds. About O(n log n).
//
// The tree is packed: rectangles sorted by their middles into strips and tiles
// (sort-tile-recursive, Leutenegger, Lopez and Edgington 1997), eight to a leaf, and eight nodes to
// a node above.
#include "boolean/envelope_clusters.h"

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
        if (m_levels.size() > 1) takeOut(m_levels.size() - 1, 0, query, found);
    }

  private:
    /// The rectangle around what a node still holds, invalid when that is nothing. Level 0 are the
    /// rectangles themselves, in the order of the tree.
    using Level = std::vector<JWEnvelop>;

    void sortIntoTiles(const std::vector<JWEnvelop>& envelops);
    JWEnvelop boxOfMembers(std::size_t level, std::size_t node) const;
    bool takeOut(std::size_t level, std::size_t node, const JWEnvelop& query,
                 std::vector<int>& found);

    std::vector<int> m_order;
    std::vector<char> m_held;
    std::vector<Level> m_levels;
};

ShrinkingTree::ShrinkingTree(const std::vector<JWEnvelop>& envelops) : m_held(envelops.size(), 0) {
    for (std::size_t i = 0; i < envelops.size(); ++i) {
        if (!envelops[i].isValid()) continue;
        m_held[i] = 1;
        m_order.push_back(static_cast<int>(i));
    }
    if (m_order.empty()) return;
    sortIntoTiles(envelops);
    m_levels.emplace_back();
    for (const int i : m_order) m_levels[0].push_back(envelops[static_cast<std::size_t>(i)]);
    do {
        const std::size_t level = m_levels.size();
        const std::size_t nodes = (m_levels.back().size() + kFan - 1) / kFan;
        m_levels.emplace_back();
        for (std::size_t i = 0; i < nodes; ++i) m_levels[level].push_back(boxOfMembers(level, i));
    } while (m_levels.back().size() > 1);
}

void ShrinkingTree::sortIntoTiles(const std::vector<JWEnvelop>& envelops) {
    struct Middle {
        double x, y;
        int position;
    };
    std::vector<Middle> middles;
    for (const int i : m_order) {  // half of each first: a sum may overflow
        const JWEnvelop& e = envelops[static_cast<std::size_t>(i)];
        middles.push_back({0.5 * e.minX + 0.5 * e.maxX, 0.5 * e.minY + 0.5 * e.maxY, i});
    }
    const std::size_t count = middles.size();
    std::sort(middles.begin(), middles.end(), [](const Middle& a, const Middle& b) {
        return a.x != b.x ? a.x < b.x : a.position < b.position;
    });
    const double leaves = std::ceil(static_cast<double>(count) / kFan);
    const auto strips = static_cast<std::size_t>(std::ceil(std::sqrt(leaves)));
    const std::size_t perStrip = (count + strips - 1) / strips;
    for (std::size_t first = 0; first < count; first += perStrip) {
        const std::size_t end = std::min(first + perStrip, count);
        std::sort(middles.begin() + static_cast<std::ptrdiff_t>(first),
                  middles.begin() + static_cast<std::ptrdiff_t>(end),
                  [](const Middle& a, const Middle& b) {
                      return a.y != b.y ? a.y < b.y : a.position < b.position;
                  });
    }
    for (std::size_t i = 0; i < count; ++i) m_order[i] = middles[i].position;
}

JWEnvelop ShrinkingTree::boxOfMembers(std::size_t level, std::size_t node) const {
    const Level& below = m_levels[level - 1];
    JWEnvelop box = JWEnvelop::invalid();
    for (std::size_t i = node * kFan; i < std::min((node + 1) * kFan, below.size()); ++i) {
        box.inflates_to_contain(below[i]);
    }
    return box;
}

/// Returns true when something was taken out.
bool ShrinkingTree::takeOut(std::size_t level, std::size_t node, const JWEnvelop& query,
                            std::vector<int>& found) {
    JWEnvelop& box = m_levels[level][node];
    if (!box.isValid() || box.isDisjoin(query)) return false;
    if (level == 0) {
        m_held[static_cast<std::size_t>(m_order[node])] = 0;
        found.push_back(m_order[node]);
        box.setInvalid();
        return true;
    }
    bool taken = false;
    const std::size_t end = std::min((node + 1) * kFan, m_levels[level - 1].size());
    for (std::size_t i = node * kFan; i < end; ++i) {
        taken = takeOut(level - 1, i, query, found) || taken;
    }
    if (taken) box = boxOfMembers(level, node);
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
