// SPDX-License-Identifier: MIT
#include "analysis/nearest/segment_tree.h"

#include <numeric>

#include "foundation/hilbert_order.h"

namespace jws::detail {
namespace {

bool followOneAnother(const Segments& pieces) {
    std::size_t follow = 0;
    for (std::size_t i = 1; i < pieces.size(); ++i)
        if (pieces[i].a == pieces[i - 1].b) ++follow;
    return 64 * follow >= 63 * pieces.size();
}

std::vector<int> orderInPlane(const Segments& pieces) {
    std::vector<JWEnvelop> boxes;
    boxes.reserve(pieces.size());
    for (const Segment& piece : pieces) boxes.push_back(boxOf(piece));
    std::vector<int> order(pieces.size());
    std::iota(order.begin(), order.end(), 0);
    sortAlongHilbertCurve(boxes, order);
    return order;
}

}  // namespace

SegmentTree::SegmentTree(const Segments& pieces) : m_size(static_cast<int>(pieces.size())) {
    if (m_size > kFan && !followOneAnother(pieces)) m_numbers = orderInPlane(pieces);
    setLeaves(pieces);
    setNodes();
}

SegmentTree::SegmentTree(const JWRawPoint* points, int count)
    : m_size(std::max(count - 1, 0)), m_points(points) {
    setNodes();
}

void SegmentTree::setLeaves(const Segments& pieces) {
    m_leaves.resize(leafCount());
    for (int place = 0; place < m_size; ++place)
        m_leaves[leafOf(place)].setPiece(place % kFan,
                                         pieces[static_cast<std::size_t>(number(place))]);
}

void SegmentTree::setNodes() {
    if (m_size == 0) return;
    do addLevel();
    while (m_levels.back().count > 1);
    m_box = boxOfNode(m_levels.size() - 1, 0);
    m_slack = slackOf(m_box);
}

/// Adds the nodes over the highest level, or over the leaves.
void SegmentTree::addLevel() {
    const bool isFirst = m_levels.empty();
    const std::size_t below = isFirst ? leafCount() : m_levels.back().count;
    const Level level{m_nodes.size(), groupsOf(below)};
    m_nodes.resize(level.first + level.count);
    for (std::size_t i = 0; i < below; ++i)
        m_nodes[level.first + i / kFan].setBox(
            i % kFan, isFirst ? boxOfLeaf(i) : boxOfNode(m_levels.size() - 1, i));
    m_levels.push_back(level);
}

JWEnvelop SegmentTree::boxOfLeaf(std::size_t leaf) const {
    JWEnvelop box = JWEnvelop::invalid();
    const int first = static_cast<int>(leaf) * kFan;
    for (int i = 0; i < countIn(leaf); ++i) box.inflates_to_contain(boxOf(piece(first + i)));
    return box;
}

JWEnvelop SegmentTree::boxOfNode(std::size_t level, std::size_t node) const {
    JWEnvelop box = JWEnvelop::invalid();
    for (std::size_t i = 0; i < countIn(level, node); ++i)
        box.inflates_to_contain(nodeAt(level, node).box(i));
    return box;
}

}  // namespace jws::detail
