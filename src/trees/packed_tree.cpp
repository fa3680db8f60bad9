// SPDX-License-Identifier: MIT
#include "trees/packed_tree.h"

#include "foundation/hilbert_order.h"

namespace jws::detail {

PackedTree::PackedTree(const std::vector<JWEnvelop>& boxes, bool inOrder) {
    m_items.reserve(boxes.size());
    for (std::size_t i = 0; i < boxes.size(); ++i) {
        if (boxes[i].isValid()) m_items.push_back(static_cast<int>(i));
    }
    if (m_items.empty()) return;
    if (!inOrder) sortAlongHilbertCurve(boxes, m_items);
    std::size_t total = m_items.size();
    for (std::size_t n = total; n > 1;) total += n = (n + kFan - 1) / kFan;
    m_boxes.reserve(total);
    for (const int item : m_items) m_boxes.push_back(boxes[static_cast<std::size_t>(item)]);
    m_levels.push_back({0, m_items.size()});
    while (m_levels.back().count > 1) {
        const Level below = m_levels.back();
        const Level level{m_boxes.size(), (below.count + kFan - 1) / kFan};
        for (std::size_t i = 0; i < level.count; ++i) {
            JWEnvelop box = m_boxes[below.first + i * kFan];
            const std::size_t end = std::min((i + 1) * kFan, below.count);
            for (std::size_t k = i * kFan + 1; k < end; ++k) {
                const JWEnvelop& member = m_boxes[below.first + k];
                box.set(std::min(box.minX, member.minX), std::min(box.minY, member.minY),
                        std::max(box.maxX, member.maxX), std::max(box.maxY, member.maxY));
            }
            m_boxes.push_back(box);
        }
        m_levels.push_back(level);
    }
}

}  // namespace jws::detail
