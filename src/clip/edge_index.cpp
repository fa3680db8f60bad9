// SPDX-License-Identifier: MIT
#include "clip/edge_index.h"

#include "foundation/hilbert_order.h"

namespace jws::detail {
namespace {

/// The positions of chains with points, neighbours in the plane next to each other.
std::vector<int> orderOf(const std::vector<PointSpan>& chains) {
    std::vector<JWEnvelop> boxes;
    std::vector<int> order;
    for (std::size_t i = 0; i < chains.size(); ++i) {
        boxes.push_back(boxOf(chains[i].points, chains[i].count));
        if (chains[i].count > 0) order.push_back(static_cast<int>(i));
    }
    if (order.size() > 1) sortAlongHilbertCurve(boxes, order);
    return order;
}

}  // namespace

double scaleFor(int exponent) {
    if (exponent > 450) return std::ldexp(1.0, 100 - exponent);
    if (exponent < -400) return std::ldexp(1.0, -100 - exponent);
    return 1;
}

EdgeIndex::EdgeIndex(const std::vector<PointSpan>& chains, Chains kind, double scale,
                     EdgeSearch search)
    : m_scale(scale), m_search(search) {
    std::size_t points = 0;
    for (const PointSpan& chain : chains) points += static_cast<std::size_t>(chain.count) + 1;
    m_points.reserve(points);
    for (const int i : orderOf(chains)) addChain(chains[static_cast<std::size_t>(i)], kind, i);
    build();
}

void EdgeIndex::addChain(const PointSpan& chain, Chains kind, int number) {
    const std::size_t first = m_points.size();
    for (int i = 0; i < chain.count; ++i) {
        const JWRawPoint p(chain.points[i].x * m_scale, chain.points[i].y * m_scale);
        if (m_points.size() == first || p != m_points.back()) m_points.push_back(p);
    }
    if (kind == Chains::Closed && m_points.back() != m_points[first]) {
        const JWRawPoint start = m_points[first];
        m_points.push_back(start);
    }
    const auto end = static_cast<int>(m_points.size()) - 1;  // of the edges
    constexpr int fan = static_cast<int>(kFan);
    for (int i = static_cast<int>(first); i < end; i += fan) {
        m_runs.push_back({i, std::min(i + fan, end), number});
    }
}

void EdgeIndex::build() {
    const auto addLevel = [this](std::size_t count, auto&& boxAt) {
        m_levels.push_back({m_boxes.size(), count});
        for (std::size_t i = 0; i < count; ++i) m_boxes.push_back(boxAt(i));
    };
    if (m_runs.empty()) return;
    addLevel(m_runs.size(), [this](std::size_t i) {
        const Run& run = m_runs[i];
        return boxOf(m_points.data() + run.first, run.end - run.first + 1);
    });
    while (m_levels.back().count > 1) {
        const Level below = m_levels.back();
        addLevel((below.count + kFan - 1) / kFan, [&](std::size_t node) {
            JWEnvelop box = JWEnvelop::invalid();
            for (std::size_t i = node * kFan; i < std::min((node + 1) * kFan, below.count); ++i)
                box.inflates_to_contain(m_boxes[below.first + i]);
            return box;
        });
    }
    m_envelop = m_boxes.back();
}

bool EdgeIndex::mayReach(const JWEnvelop& box) const {
    return !m_levels.empty() &&
           (m_search == EdgeSearch::AllEdges || reachIn(m_levels.size() - 1, 0, box));
}

bool EdgeIndex::reachIn(std::size_t level, std::size_t node, const JWEnvelop& box) const {
    if (m_boxes[m_levels[level].first + node].isDisjoin(box)) return false;
    if (level == 0) return true;
    const std::size_t end = std::min((node + 1) * kFan, m_levels[level - 1].count);
    for (std::size_t i = node * kFan; i < end; ++i) {
        if (reachIn(level - 1, i, box)) return true;
    }
    return false;
}

void EdgeIndex::runsOf(std::size_t level, std::size_t node, std::size_t& first,
                       std::size_t& last) const {
    std::size_t size = 1;
    for (std::size_t i = 0; i < level; ++i) size *= kFan;
    first = node * size;
    last = std::min(first + size, m_runs.size()) - 1;
}

bool EdgeIndex::isOddWestOf(const JWRawPoint& p) const {
    return !m_levels.empty() && oddWestIn(m_levels.size() - 1, 0, p);
}

bool EdgeIndex::oddWestIn(std::size_t level, std::size_t node, const JWRawPoint& p) const {
    const JWEnvelop& box = m_boxes[m_levels[level].first + node];
    if (box.minX >= p.x || box.minY > p.y || box.maxY <= p.y) return false;
    if (box.maxX < p.x) {
        std::size_t first = 0, last = 0;
        runsOf(level, node, first, last);
        if (m_runs[first].chain == m_runs[last].chain)
            return (from(m_runs[first].first).y > p.y) != (to(m_runs[last].end - 1).y > p.y);
    }
    bool odd = false;
    if (level > 0) {
        const std::size_t end = std::min((node + 1) * kFan, m_levels[level - 1].count);
        for (std::size_t i = node * kFan; i < end; ++i) odd ^= oddWestIn(level - 1, i, p);
        return odd;
    }
    const Run& run = m_runs[node];
    for (int i = run.first; i < run.end; ++i) {
        const JWRawPoint &a = from(i), &b = to(i);
        if ((a.y > p.y) == (b.y > p.y) || (a.x >= p.x && b.x >= p.x)) continue;
        if (a.x < p.x && b.x < p.x) {
            odd = !odd;
        } else {
            odd ^= (a.y < b.y ? orientationSign(a, b, p) : orientationSign(b, a, p)) < 0;
        }
    }
    return odd;
}

}  // namespace jws::detail
