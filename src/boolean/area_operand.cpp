// SPDX-License-Identifier: MIT
//
// A large area that meets thousands of small ones would be walked in full for each of them. Boxes
// over stretches of its rings (boolean/ring_window.h) keep that to what lies near each.
#include "boolean/area_operand.h"

#include <utility>

namespace jws::detail {
namespace {

constexpr int kLarge = 256;  // points

}  // namespace

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
