// SPDX-License-Identifier: MIT
//
// A large area that meets thousands of small ones would be walked in full for each of them. What
// decides about a rectangle is little: a stretch of boundary that stays strictly beyond one side of
// it may be replaced by its chord, since the two together bound something beyond that side. Boxes
// over runs of neighbouring points, in a tree, tell of whole runs at once that they lie beyond a
// side, so that a rectangle costs what passes through it and a logarithm. No new coordinate arises.
//
// Cost: O(n) to build, 5 bytes a point; a rectangle through which k points pass O(k + log n) as a
// rule.
#include "overlay/area_operand.h"

#include <algorithm>
#include <utility>

namespace jws::detail {
namespace {

constexpr int kFan = 8;
constexpr int kLarge = 256;  // points

/// The sides of `box` that all of `points` lies strictly beyond, one bit each.
unsigned sidesBeyond(const JWEnvelop& points, const JWEnvelop& box) {
    return (points.maxX < box.minX ? 1u : 0u) | (points.minX > box.maxX ? 2u : 0u) |
           (points.maxY < box.minY ? 4u : 0u) | (points.minY > box.maxY ? 8u : 0u);
}

unsigned sidesBeyond(const JWRawPoint& p, const JWEnvelop& box) {
    return sidesBeyond(JWEnvelop(p.x, p.y, p.x, p.y), box);
}

int groupsOf(int count) { return (count + kFan - 1) / kFan; }

}  // namespace

/// Takes the points of a ring in order and hands on those that stay.
class Shortener {
  public:
    Shortener(const JWEnvelop& window, RingSet& out) : m_window(window), m_out(out) {}

    void takeAll(const RingView& ring) {
        for (int i = 0; i < ring.count; ++i) take(ring.points[i]);
    }

    void take(const JWRawPoint& p) { takeLast(p, sidesBeyond(p, m_window)); }

    /// Takes a run of points that all lie beyond `sides`.
    void takeRun(const JWRawPoint* first, const JWRawPoint* last, unsigned sides) {
        const bool turns = (m_common & sides) == 0;
        if (turns) take(*first);
        if (!turns || last != first) takeLast(*last, sides);
    }

    void end(int hole) {
        if (m_started) m_out.addPoint(m_pending);
        m_out.endRing(hole);
    }

  private:
    /// The next point, or the last of a run beyond `sides`: the one before it is kept unless the
    /// stretch since the last point kept lies beyond a side.
    void takeLast(const JWRawPoint& p, unsigned sides) {
        if (!m_started) {
            m_started = true;
        } else if ((m_common & sides) == 0) {
            m_out.addPoint(m_pending);
            m_common = sidesBeyond(m_pending, m_window) & sides;
        } else {
            m_common &= sides;
        }
        m_pending = p;
    }

    const JWEnvelop& m_window;
    RingSet& m_out;
    JWRawPoint m_pending = {};
    unsigned m_common = 0;  ///< sides that the stretch since the last point kept lies beyond
    bool m_started = false;
};

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

Area::Area(const JWGeometry& geometry, std::shared_ptr<const void> owner)
    : m_envelop(envelopOf(geometry)), m_owner(std::move(owner)) {
    appendRings(geometry, m_rings);
}

Area::Area(RingViews rings, std::shared_ptr<const void> owner)
    : m_rings(std::move(rings)), m_owner(std::move(owner)) {
    for (const RingView& ring : m_rings) {
        for (int i = 0; i < ring.count; ++i) m_envelop.inflates_to_contain(ring.points[i]);
    }
}

bool Area::isLarge() const {
    int points = 0;
    for (const RingView& ring : m_rings) {
        points += ring.count;
        if (points > kLarge) return true;
    }
    return false;
}

void Area::prepare() {
    if (!m_chains && isLarge()) m_chains = std::make_shared<const ChainBoxes>(m_rings);
}

void Area::appendWithin(const JWEnvelop& box, RingSet& storage, RingViews& views) const {
    if (box.isContain(m_envelop)) {
        views.insert(views.end(), m_rings.begin(), m_rings.end());
    } else if (m_chains) {
        m_chains->appendWithin(m_rings, box, storage, views);
    } else {
        for (const RingView& ring : m_rings) {
            Shortener shortener(box, storage);
            shortener.takeAll(ring);
            shortener.end(ring.hole);
        }
        for (int i = 0; i < storage.count(); ++i) views.push_back(storage.view(i));
    }
}

}  // namespace jws::detail
