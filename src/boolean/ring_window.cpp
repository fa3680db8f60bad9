// SPDX-License-Identifier: MIT
//
// Boxes over runs of neighbouring points, in a tree, tell of whole runs at once that they lie
// beyond a side of the window, so that a window costs what passes through it and a logarithm.
//
// Cost: O(n) to build, 5 bytes a point; a rectangle through which k points pass O(k + log n) as a
// rule.
#include "boolean/ring_window.h"

#include <algorithm>
#include <cstdint>

namespace jws::detail {
namespace {

constexpr int kFan = 8;

int groupsOf(int count) { return (count + kFan - 1) / kFan; }

}  // namespace

void ChainBoxes::walk(const Chains& chains, std::size_t level, int group, const RingView& ring,
                      const JWEnvelop& window, Shortener& shortener) const {
    const Level& boxes = m_levels[chains.firstLevel + level];
    const unsigned sides =
        sidesBeyond(m_boxes[boxes.first + static_cast<std::size_t>(group)], window);
    if (sides != 0) {
        std::int64_t size = kFan;
        for (std::size_t l = 0; l < level; ++l) size *= kFan;
        const std::int64_t first = group * size;
        const std::int64_t last = std::min<std::int64_t>(first + size, ring.count) - 1;
        shortener.takeRun(ring.points + first, ring.points + last, sides);
        return;
    }
    const int below = level == 0 ? ring.count : m_levels[chains.firstLevel + level - 1].count;
    const int end = std::min((group + 1) * kFan, below);
    for (int i = group * kFan; i < end; ++i) {
        if (level == 0) {
            shortener.take(ring.points[i]);
        } else {
            walk(chains, level - 1, i, ring, window, shortener);
        }
    }
}

ChainBoxes::ChainBoxes(const RingViews& rings) {
    std::size_t total = 0;
    for (const RingView& ring : rings) {
        for (int n = ring.count; n > 1;) total += static_cast<std::size_t>(n = groupsOf(n));
    }
    m_boxes.reserve(total);
    m_rings.reserve(rings.size());
    for (const RingView& ring : rings) addRing(ring);
}

void ChainBoxes::addRing(const RingView& ring) {
    m_rings.push_back({m_levels.size(), 0});
    const auto add = [&](int count, auto&& boxOf) {
        m_levels.push_back({m_boxes.size(), groupsOf(count)});
        ++m_rings.back().levelCount;
        for (int i = 0; i < count; i += kFan) {
            JWEnvelop box = JWEnvelop::invalid();
            for (int k = i; k < std::min(i + kFan, count); ++k) {
                box.inflates_to_contain(boxOf(static_cast<std::size_t>(k)));
            }
            m_boxes.push_back(box);
        }
    };
    if (ring.count == 0) return;
    add(ring.count, [&](std::size_t k) { return ring.points[k]; });
    while (m_levels.back().count > 1) {
        const Level below = m_levels.back();
        add(below.count, [&](std::size_t k) { return m_boxes[below.first + k]; });
    }
}

void ChainBoxes::appendWithin(const RingViews& rings, const JWEnvelop& box, RingSet& storage,
                              RingViews& views) const {
    for (std::size_t i = 0; i < rings.size(); ++i) {
        const Chains& chains = m_rings[i];
        if (chains.levelCount == 0) continue;
        const JWEnvelop& whole = m_boxes[m_levels[chains.firstLevel + chains.levelCount - 1].first];
        if (whole.isDisjoin(box)) continue;
        if (box.isContain(whole)) {
            views.push_back(rings[i]);
        } else {
            Shortener shortener(box, storage);
            walk(chains, chains.levelCount - 1, 0, rings[i], box, shortener);
            shortener.end(rings[i].hole);
        }
    }
    for (int i = 0; i < storage.count(); ++i) views.push_back(storage.view(i));
}

}  // namespace jws::detail
