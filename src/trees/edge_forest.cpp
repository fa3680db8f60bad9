// SPDX-License-Identifier: MIT
#include "trees/edge_forest.h"

#include <algorithm>

#include "foundation/hilbert_order.h"

namespace jws::detail {

void EdgeForest::clear() {
    m_points.clear();
    m_chains.clear();
    m_nodes.clear();
    m_root = 0;
}

void EdgeForest::endChain(bool area) {
    EdgeChain chain;
    chain.first = m_chains.empty() ? 0 : m_chains.back().last + 1;
    chain.last = static_cast<std::uint32_t>(m_points.size()) - 1;
    chain.area = area;
    chain.closed = m_points[chain.first] == m_points[chain.last];
    m_chains.push_back(chain);
}

void EdgeForest::build() {
    m_nodes.clear();
    if (m_chains.empty()) return;
    m_nodes.reserve(m_points.size() / 6 + 3 * m_chains.size() + 8);
    for (std::uint32_t c = 0; c < m_chains.size(); ++c) buildChain(m_chains[c], c);
    m_root = m_chains[0].node;
    if (m_chains.size() > 1) buildGroups();
}

/// Puts levels of parents over the nodes from `from` to the end until one is left, which it
/// returns; `finish` sets what is particular to a kind of parent.
template <class Finish>
std::uint32_t EdgeForest::buildLevels(std::uint32_t from, Finish&& finish) {
    auto to = static_cast<std::uint32_t>(m_nodes.size());
    while (to - from > 1) {
        for (std::uint32_t i = from; i < to; i += kFan) {
            const std::uint32_t end = std::min(i + kFan, to);
            Node parent = m_nodes[i];
            for (std::uint32_t k = i + 1; k < end; ++k) {
                parent.box.inflates_to_contain(m_nodes[k].box);
                parent.sense |= m_nodes[k].sense;
            }
            parent.first = i;
            parent.last = end;
            finish(parent);
            m_nodes.push_back(parent);
        }
        from = to;
        to = static_cast<std::uint32_t>(m_nodes.size());
    }
    return from;
}

void EdgeForest::buildChain(EdgeChain& chain, std::uint32_t index) {
    const auto from = static_cast<std::uint32_t>(m_nodes.size());
    for (std::uint32_t e = chain.first; e < chain.last; e += kFan) {
        const std::uint32_t end = std::min(e + kFan, chain.last);
        JWEnvelop box = edgeBox(e);
        int sense = 0;
        for (std::uint32_t i = e; i < end; ++i) {
            const JWRawPoint &o = m_points[i], &p = m_points[i + 1];
            sense |= (p.x > o.x) | (p.x < o.x) << 1 | (p.y > o.y) << 2 | (p.y < o.y) << 3;
            box.minX = std::min(box.minX, p.x);
            box.minY = std::min(box.minY, p.y);
            box.maxX = std::max(box.maxX, p.x);
            box.maxY = std::max(box.maxY, p.y);
        }
        m_nodes.push_back({box, e, end, e, end, index, kLeaf, static_cast<std::uint8_t>(sense)});
    }
    chain.node = buildLevels(from, [this](Node& parent) {
        parent.lastEdge = m_nodes[parent.last - 1].lastEdge;
        parent.kind = kRun;
    });
}

void EdgeForest::buildGroups() {
    std::vector<int> order(m_chains.size());
    for (std::size_t c = 0; c < order.size(); ++c) order[c] = static_cast<int>(c);
    if (order.size() > kFan) {
        std::vector<JWEnvelop> boxes(order.size());
        for (std::size_t c = 0; c < boxes.size(); ++c) boxes[c] = chainBox(c);
        sortAlongHilbertCurve(boxes, order);
    }
    // Children must lie together, so the chains' nodes are copied in order.
    const auto from = static_cast<std::uint32_t>(m_nodes.size());
    for (const int c : order) {
        const Node copy = m_nodes[m_chains[static_cast<std::size_t>(c)].node];
        m_nodes.push_back(copy);
    }
    m_root = buildLevels(from, [](Node& parent) {
        parent.kind = kGroup;
        parent.sense = 15;
    });
}

EdgeForest::PairSearch::PairSearch(const EdgeForest& a, const EdgeForest& b)
    : m_a(a), m_b(b), m_limit(4 * (a.m_nodes.size() + b.m_nodes.size()) + 256) {}

void EdgeForest::PairSearch::makeOriented() {
    const JWRawPoint& origin = m_a.m_points.front();
    JWEnvelop all = m_a.m_nodes[m_a.m_root].box;
    all.inflates_to_contain(m_b.m_nodes[m_b.m_root].box);
    m_extent = (all.maxX - all.minX) + (all.maxY - all.minY);
    m_orientedA = m_a.orientedBoxes(origin);
    if (!isWithinOne()) m_orientedB = m_b.orientedBoxes(origin);
}

bool EdgeForest::PairSearch::areOrientedApart(const Node& a, const Node& b) const {
    if (a.kind == kGroup || b.kind == kGroup) return false;
    const std::vector<OrientedBox>& boxesB = isWithinOne() ? m_orientedA : m_orientedB;
    const auto i = static_cast<std::size_t>(&a - m_a.m_nodes.data());
    const auto j = static_cast<std::size_t>(&b - m_b.m_nodes.data());
    return m_orientedA[i].clearlyApart(boxesB[j], m_extent);
}

/// One for each node; those of groups stand for nothing.
std::vector<OrientedBox> EdgeForest::orientedBoxes(const JWRawPoint& origin) const {
    std::vector<OrientedBox> boxes;
    boxes.reserve(m_nodes.size());
    for (const Node& node : m_nodes) {
        const auto points = static_cast<int>(node.lastEdge - node.firstEdge) + 1;
        boxes.push_back(node.kind == kGroup
                            ? OrientedBox{}
                            : OrientedBox::around(&m_points[node.firstEdge], points, origin));
    }
    return boxes;
}

bool EdgeForest::areIdleNeighbours(std::uint32_t i, std::uint32_t j, const EdgeChain& chain) const {
    const bool follows = j == i + 1;
    const bool wraps = chain.closed && i == chain.first && j + 1 == chain.last;
    if (!follows && !wraps) return false;
    if (follows && wraps) return false;  // two edges, there and back
    const JWRawPoint& before = m_points[follows ? i : j];
    const JWRawPoint& middle = m_points[follows ? j : i];
    const JWRawPoint& after = m_points[follows ? j + 1 : i + 1];
    if (orientationSign(before, middle, after) != 0) return true;
    return middle.x != before.x ? (before.x < middle.x) == (middle.x < after.x)
                                : (before.y < middle.y) == (middle.y < after.y);
}

}  // namespace jws::detail
