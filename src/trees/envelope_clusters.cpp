// SPDX-License-Identifier: MIT
//
// Clusters of rectangles that meet.
//
// A packed tree over the rectangles is joined with itself, and rectangles that meet are united
// (union-find). Pairs of nodes whose boxes are apart are passed over, and so are pairs of nodes all
// of whose rectangles are known to be in one cluster: without that, n rectangles that overlap one
// another would cost n² tests. About O(n log n).
//
// The tree is packed: rectangles sorted by their middles into strips and tiles
// (sort-tile-recursive, Leutenegger, Lopez and Edgington 1997), eight to a leaf, and eight nodes to
// a node above. Tiles get the shape that the rectangles have on average: in square tiles, long thin
// rectangles that lie side by side would all overlap one another's.
//
// On a team, the strips are sorted and the subtrees below some level joined at the same time;
// subtrees are stretches of places, which have nothing in common. What is between them is joined
// afterwards.
#include "trees/envelope_clusters.h"

#include <algorithm>
#include <cmath>
#include <numeric>
#include <utility>

#include "foundation/pulse.h"

namespace jws::detail {
namespace {

constexpr std::size_t kFanBits = 3;
constexpr std::size_t kFan = std::size_t{1} << kFanBits;
constexpr std::size_t kSharedFrom = 4096;  // rectangles that a team shares
constexpr std::size_t kParts = 8;          // at least, where it does

class ContactTree {
  public:
    /// Unites those of the valid envelopes that meet.
    ContactTree(const Team& team, const std::vector<JWEnvelop>& envelops);

    /// Positions of the valid envelopes, in the order of the tree.
    const std::vector<int>& order() const { return m_order; }
    /// Number of the cluster that the rectangle at a place of the tree belongs to: the first place
    /// of the cluster.
    int clusterOf(int place);

  private:
    struct Node {
        JWEnvelop box;
        bool whole;  ///< all below it is known to be in one cluster
    };
    /// Level 0 are the rectangles themselves, in the order of the tree.
    using Level = std::vector<Node>;

    void sortIntoTiles(const Team& team, const std::vector<JWEnvelop>& envelops);
    void buildLevels(const std::vector<JWEnvelop>& envelops);
    std::size_t endOf(std::size_t level, std::size_t node) const {
        return std::min((node + 1) * kFan, m_levels[level - 1].size());
    }
    int firstPlace(std::size_t level, std::size_t node) const {
        return static_cast<int>(node << (kFanBits * level));
    }
    int clusterAt(std::size_t level, std::size_t node) {
        return clusterOf(firstPlace(level, node));
    }
    /// Both are whole and of one cluster: there is nothing left to be found between them.
    bool isDone(std::size_t level, std::size_t a, std::size_t b) {
        return m_levels[level][a].whole && m_levels[level][b].whole &&
               clusterAt(level, a) == clusterAt(level, b);
    }
    void joinAll(const Team& team);
    /// Nodes of the level `joined` are joined within already.
    void joinWithin(std::size_t level, std::size_t node, std::size_t joined, StepCounter& pace);
    void joinBetween(std::size_t level, std::size_t a, std::size_t b, StepCounter& pace);
    void updateWhole(std::size_t level, std::size_t node);

    std::vector<int> m_order;
    std::vector<int> m_parents;  ///< of places
    std::vector<Level> m_levels;
};

/// The number of strips for which a rectangle meets the fewest tiles on average.
std::size_t stripsFor(const std::vector<JWEnvelop>& envelops, double leaves) {
    JWEnvelop all = JWEnvelop::invalid();
    for (const JWEnvelop& e : envelops) {
        if (e.isValid()) all.inflates_to_contain(e);
    }
    // Of the whole, by turns so that nothing overflows; a rectangle without extent has some.
    const double width = 0.5 * all.maxX - 0.5 * all.minX, height = 0.5 * all.maxY - 0.5 * all.minY;
    double across = 1, along = 1;
    for (const JWEnvelop& e : envelops) {
        if (!e.isValid()) continue;
        if (width > 0) across += (0.5 * e.maxX - 0.5 * e.minX) / width;
        if (height > 0) along += (0.5 * e.maxY - 0.5 * e.minY) / height;
    }
    const double strips = std::ceil(std::sqrt(leaves * (along / across)));
    return static_cast<std::size_t>(std::clamp(strips, 1.0, leaves));
}

ContactTree::ContactTree(const Team& team, const std::vector<JWEnvelop>& envelops) {
    for (std::size_t i = 0; i < envelops.size(); ++i) {
        if (envelops[i].isValid()) m_order.push_back(static_cast<int>(i));
    }
    if (m_order.empty()) return;
    sortIntoTiles(team, envelops);
    buildLevels(envelops);
    m_parents.resize(m_order.size());
    std::iota(m_parents.begin(), m_parents.end(), 0);
    joinAll(team);
}

void ContactTree::sortIntoTiles(const Team& team, const std::vector<JWEnvelop>& envelops) {
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
    const std::size_t strips = stripsFor(envelops, std::ceil(static_cast<double>(count) / kFan));
    const std::size_t perStrip = (count + strips - 1) / strips;
    const auto place = [&](std::size_t i) {
        return middles.begin() + static_cast<std::ptrdiff_t>(std::min(i, count));
    };
    const auto leftOf = [](const Middle& a, const Middle& b) {
        return a.x != b.x ? a.x < b.x : a.position < b.position;
    };
    const auto below = [](const Middle& a, const Middle& b) {
        return a.y != b.y ? a.y < b.y : a.position < b.position;
    };
    // Each strip has to have its own; in which order is for the second step.
    const std::size_t parts = m_order.size() > kSharedFrom ? kParts : 1;
    const std::size_t perPart = (strips + parts - 1) / parts * perStrip;
    for (std::size_t i = perPart; i < count; i += perPart) {
        std::nth_element(place(i - perPart), place(i), middles.end(), leftOf);
    }
    parallelChunks(team, static_cast<std::int64_t>(parts), 1, [&](std::int64_t part, std::int64_t) {
        const std::size_t first = static_cast<std::size_t>(part) * perPart;
        std::sort(place(first), place(first + perPart), leftOf);
        for (std::size_t i = first; i < first + perPart; i += perStrip) {
            std::sort(place(i), place(i + perStrip), below);
        }
        return true;
    });
    for (std::size_t i = 0; i < count; ++i) m_order[i] = middles[i].position;
}

void ContactTree::buildLevels(const std::vector<JWEnvelop>& envelops) {
    m_levels.emplace_back();
    for (const int i : m_order) {
        m_levels[0].push_back({envelops[static_cast<std::size_t>(i)], true});
    }
    do {
        const Level& below = m_levels.back();
        Level level;
        for (std::size_t i = 0; i < below.size(); i += kFan) {
            JWEnvelop box = JWEnvelop::invalid();
            for (std::size_t k = i; k < std::min(i + kFan, below.size()); ++k) {
                box.inflates_to_contain(below[k].box);
            }
            level.push_back({box, false});
        }
        m_levels.push_back(std::move(level));
    } while (m_levels.back().size() > 1);
}

int ContactTree::clusterOf(int place) {
    auto at = static_cast<std::size_t>(place);
    while (m_parents[at] != static_cast<int>(at)) {
        m_parents[at] = m_parents[static_cast<std::size_t>(m_parents[at])];
        at = static_cast<std::size_t>(m_parents[at]);
    }
    return static_cast<int>(at);
}

void ContactTree::updateWhole(std::size_t level, std::size_t node) {
    Node& self = m_levels[level][node];
    if (self.whole) return;
    const int cluster = clusterAt(level, node);
    for (std::size_t i = node * kFan; i < endOf(level, node); ++i) {
        if (!m_levels[level - 1][i].whole || clusterAt(level - 1, i) != cluster) return;
    }
    self.whole = true;
}

void ContactTree::joinAll(const Team& team) {
    const std::size_t top = m_levels.size() - 1;
    std::size_t shared = m_order.size() > kSharedFrom ? top : 0;
    while (shared > 0 && m_levels[shared].size() < kParts) --shared;
    if (shared > 0) {
        parallelChunks(team, static_cast<std::int64_t>(m_levels[shared].size()), 1,
                       [&](std::int64_t node, std::int64_t) {
                           StepCounter pace;
                           joinWithin(shared, static_cast<std::size_t>(node), 0, pace);
                           return true;
                       });
    }
    StepCounter pace;
    joinWithin(top, 0, shared, pace);
}

void ContactTree::joinWithin(std::size_t level, std::size_t node, std::size_t joined,
                             StepCounter& pace) {
    if (level == joined) return;
    const std::size_t end = endOf(level, node);
    for (std::size_t i = node * kFan; i < end; ++i) {
        joinWithin(level - 1, i, joined, pace);
        for (std::size_t k = node * kFan; k < i; ++k) joinBetween(level - 1, k, i, pace);
    }
    updateWhole(level, node);
}

void ContactTree::joinBetween(std::size_t level, std::size_t a, std::size_t b, StepCounter& pace) {
    pace.step();
    if (m_levels[level][a].box.isDisjoin(m_levels[level][b].box) || isDone(level, a, b)) return;
    if (level == 0) {
        const int first = clusterAt(0, a), second = clusterAt(0, b);
        m_parents[static_cast<std::size_t>(std::max(first, second))] = std::min(first, second);
        return;
    }
    const Level& below = m_levels[level - 1];
    for (std::size_t i = a * kFan; i < endOf(level, a); ++i) {
        if (below[i].box.isDisjoin(m_levels[level][b].box)) continue;
        for (std::size_t k = b * kFan; k < endOf(level, b); ++k) joinBetween(level - 1, i, k, pace);
    }
    updateWhole(level, a);
    updateWhole(level, b);
}

}  // namespace

/// Clusters in the order of their first positions.
PositionLists clusterByContact(const Team& team, const std::vector<JWEnvelop>& envelops) {
    ContactTree tree(team, envelops);
    std::vector<int> clusterOf(envelops.size(), -1);  // by position: the tree's number
    const auto count = static_cast<int>(tree.order().size());
    for (int place = 0; place < count; ++place) {
        clusterOf[static_cast<std::size_t>(tree.order()[static_cast<std::size_t>(place)])] =
            tree.clusterOf(place);
    }
    std::vector<int> numbers(tree.order().size(), -1);  // of the tree's clusters in the result
    PositionLists clusters;
    for (int& cluster : clusterOf) {
        if (cluster < 0) continue;
        int& number = numbers[static_cast<std::size_t>(cluster)];
        if (number < 0) {
            number = static_cast<int>(clusters.ends.size());
            clusters.ends.push_back(0);
        }
        cluster = number;
        ++clusters.ends[static_cast<std::size_t>(number)];
    }
    std::vector<std::size_t> next;  // where the next member of a cluster goes
    std::size_t end = 0;
    for (std::size_t& size : clusters.ends) {
        next.push_back(end);
        end += size;
        size = end;
    }
    clusters.positions.resize(end);
    for (std::size_t i = 0; i < clusterOf.size(); ++i) {
        if (clusterOf[i] < 0) continue;
        clusters.positions[next[static_cast<std::size_t>(clusterOf[i])]++] = static_cast<int>(i);
    }
    return clusters;
}

PositionLists clusterByContact(const std::vector<JWEnvelop>& envelops) {
    return clusterByContact(Team(1), envelops);
}

}  // namespace jws::detail
