// SPDX-License-Identifier: MIT
//
// What of a ring decides about the inside of a rectangle, the window: whatever a clip can leave out
// before it begins.
//
// A ring whose own rectangle misses the window does not change the even-odd parity there; neither
// does a stretch of boundary that stays strictly beyond one of its sides, if the stretch is
// replaced by its chord: the two together bound something beyond that side. No new coordinate
// arises.
#ifndef JW_BOOLEAN_RING_WINDOW_H
#define JW_BOOLEAN_RING_WINDOW_H

#include <cstddef>
#include <vector>

#include "foundation/ring_set.h"

namespace jws::detail {

/// The sides of `box` that all of `points` lies strictly beyond, one bit each.
inline unsigned sidesBeyond(const JWEnvelop& points, const JWEnvelop& box) {
    return (points.maxX < box.minX ? 1u : 0u) | (points.minX > box.maxX ? 2u : 0u) |
           (points.maxY < box.minY ? 4u : 0u) | (points.minY > box.maxY ? 8u : 0u);
}

inline unsigned sidesBeyond(const JWRawPoint& p, const JWEnvelop& box) {
    return sidesBeyond(JWEnvelop(p.x, p.y, p.x, p.y), box);
}

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

/// Boxes over runs of eight points of each ring, boxes over eight of these, and so on.
class ChainBoxes {
  public:
    explicit ChainBoxes(const RingViews& rings);
    /// Appends what decides about the inside of `box`: rings within it as they are, others
    /// shortened into `storage`, whose views follow behind. Rings that miss it are left out.
    void appendWithin(const RingViews& rings, const JWEnvelop& box, RingSet& storage,
                      RingViews& views) const;
    std::size_t memorySize() const { return m_boxes.size() * sizeof(JWEnvelop); }

  private:
    struct Level {
        std::size_t first;  ///< of its boxes in `m_boxes`
        int count;
    };
    struct Chains {
        std::size_t firstLevel;
        std::size_t levelCount;
    };
    void addRing(const RingView& ring);
    void walk(const Chains& chains, std::size_t level, int group, const RingView& ring,
              const JWEnvelop& window, Shortener& shortener) const;

    std::vector<JWEnvelop> m_boxes;
    std::vector<Level> m_levels;
    std::vector<Chains> m_rings;
};

}  // namespace jws::detail

#endif  // JW_BOOLEAN_RING_WINDOW_H
