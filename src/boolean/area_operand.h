// SPDX-License-Identifier: MIT
//
// One operand of many clips: the rings of an area, borrowed, and for a large area boxes over
// stretches of its rings.
#ifndef JW_BOOLEAN_AREA_OPERAND_H
#define JW_BOOLEAN_AREA_OPERAND_H

#include <memory>
#include <vector>

#include "boolean/ring_window.h"
#include "foundation/ring_set.h"
#include "jw_geometry.h"

namespace jws::detail {

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

#endif  // JW_BOOLEAN_AREA_OPERAND_H
