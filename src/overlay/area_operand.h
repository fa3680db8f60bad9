// SPDX-License-Identifier: MIT
//
// One operand of many clips: the rings of an area, borrowed, and for a large area boxes over
// stretches of its rings.
#ifndef JW_OVERLAY_AREA_OPERAND_H
#define JW_OVERLAY_AREA_OPERAND_H

#include <memory>
#include <vector>

#include "boolean/ring_set.h"
#include "jw_geometry.h"

namespace jws::detail {

class Shortener;

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

/// The rings of a polygon or multipolygon, read by the even-odd rule. Cheap to copy; the points are
/// borrowed from `owner`, which it keeps alive, or from whoever made it.
class Area {
  public:
    Area() = default;
    /// Borrows the rings of `geometry`.
    explicit Area(const JWGeometry& geometry, std::shared_ptr<const void> owner = nullptr);
    /// Borrows rings.
    explicit Area(RingViews rings, std::shared_ptr<const void> owner = nullptr);

    const RingViews& rings() const { return m_rings; }
    const JWEnvelop& envelop() const { return m_envelop; }
    bool isEmpty() const { return m_rings.empty(); }
    /// True when the envelopes have more than a border in common.
    bool overlaps(const Area& other) const { return m_envelop.intersected(other.m_envelop); }

    /// True for an area of so many points that boxes pay off when it meets many partners.
    bool isLarge() const;
    const std::shared_ptr<const ChainBoxes>& chains() const { return m_chains; }
    void setChains(std::shared_ptr<const ChainBoxes> chains) { m_chains = std::move(chains); }
    /// Makes the boxes of a large area that has none yet.
    void prepare();

    /// Appends the rings as far as they decide about the inside of `box`; `storage` takes the
    /// points of those that are shortened, and must be empty.
    void appendWithin(const JWEnvelop& box, RingSet& storage, RingViews& views) const;

  private:
    RingViews m_rings;
    JWEnvelop m_envelop = JWEnvelop::invalid();
    std::shared_ptr<const void> m_owner;
    std::shared_ptr<const ChainBoxes> m_chains;
};

}  // namespace jws::detail

#endif  // JW_OVERLAY_AREA_OPERAND_H
