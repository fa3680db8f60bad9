// SPDX-License-Identifier: MIT
//
// A region is held as one outline without rings below the tolerance, as uniting it step by step
// would leave it. It need only be compared with partners of its own features, since what overlaps
// none of them can meet no more than holes that were dropped; and again only with those near what
// has changed. So each partner costs a clip of what of the outline lies near it, and one more each
// time the region grows beside it.
#include "overlay/feature_clusters.h"

#include <algorithm>
#include <map>
#include <memory>

#include "boolean/area_union.h"
#include "overlay/geometry_overlay.h"

namespace jws::detail {
namespace {

int outerRings(const RingViews& rings) {
    int count = 0;
    for (const RingView& ring : rings) count += ring.hole == 0 ? 1 : 0;
    return count;
}

/// The rings that reach the tolerance; `dropped` grows by the rectangles of the others.
RingViews withoutSmall(const ClippedContours& contours, double tolerance, JWEnvelop& dropped) {
    RingViews kept;
    for (int i = 0; i < contours.count(); ++i) {
        const RingView ring = contours.view(i);
        if (!(areaOf(ring) < tolerance)) {
            kept.push_back(ring);
            continue;
        }
        for (int k = 0; k < ring.count; ++k) dropped.inflates_to_contain(ring.points[k]);
    }
    return kept;
}

/// The union of two areas has fewer outer rings than both together.
bool losesRings(const RingViews& a, const RingViews& b, double tolerance) {
    const ClippedContours united = clipRings(a, b, JWBooleanUnion);
    JWEnvelop dropped = JWEnvelop::invalid();
    const int kept = outerRings(withoutSmall(united, tolerance, dropped));
    return kept > 0 && kept < outerRings(a) + outerRings(b);
}

}  // namespace

/// A cluster of two features or more on its way, and the features that may come to it.
class FeatureClusters::Region {
  public:
    explicit Region(double tolerance) : m_tolerance(tolerance) {}

    /// Takes in features; partners near them are due to be compared.
    void add(LayerSide& side, const Hits& features) {
        AreaUnion all(everywhere());
        if (!m_area.isEmpty()) all.add(m_area);
        JWEnvelop changed = JWEnvelop::invalid();
        side.forEach(features, [&](const OverlayFeature& feature) {
            all.add(feature.area);
            changed.inflates_to_contain(feature.area.envelop());
        });
        const auto outline = std::make_shared<const ClippedContours>(all.contours());
        m_area = Area(withoutSmall(*outline, m_tolerance, changed), outline);
        m_area.prepare();
        for (auto& [position, partner] : partners) {
            partner.due = partner.due || partner.envelop.intersected(changed);
        }
    }
    bool overlapsTruly(const Area& other) const {
        return reaches(intersectAreas(m_area, other), m_tolerance) &&
               losesRings(m_area.rings(), other.rings(), m_tolerance);
    }

    struct Partner {
        bool due = true;
        JWEnvelop envelop = JWEnvelop::invalid();  ///< known once it was compared
    };
    std::map<std::size_t, Partner> partners;  ///< by position

  private:
    double m_tolerance;
    Area m_area;
};

FeatureClusters::FeatureClusters(std::int64_t count, double tolerance)
    : m_tolerance(tolerance),
      m_parents(static_cast<std::size_t>(count)),
      m_ringsHold(static_cast<std::size_t>(count)) {
    for (std::size_t i = 0; i < m_parents.size(); ++i) m_parents[i] = i;
}

std::size_t FeatureClusters::root(std::size_t i) {
    while (m_parents[i] != i) i = m_parents[i] = m_parents[m_parents[i]];
    return i;
}

void FeatureClusters::join(std::size_t i, std::size_t j) {
    const std::size_t a = root(i), b = root(j);
    m_parents[std::max(a, b)] = std::min(a, b);
}

void FeatureClusters::compare(const OverlayFeature& a, const OverlayFeature& b) {
    const ClippedContours common = intersectAreas(a.area, b.area);
    if (common.count() == 0) return;
    const bool together = overlapTruly(a, b, common);
    const auto i = static_cast<std::size_t>(a.position), j = static_cast<std::size_t>(b.position);
    const std::lock_guard<std::mutex> lock(m_mutex);
    if (together) {
        join(i, j);
    } else {
        m_doubtful.insert(m_doubtful.end(), {{i, j}, {j, i}});
    }
}

bool FeatureClusters::overlapTruly(const OverlayFeature& a, const OverlayFeature& b,
                                   const ClippedContours& common) {
    if (!reaches(common, m_tolerance)) return false;
    if (ringsHold(a) && ringsHold(b)) return true;
    return losesRings(a.area.rings(), b.area.rings(), m_tolerance);
}

/// The union of this feature and another has fewer outer rings than both, if they overlap: because
/// as many rings as it stores enclose it when it is resolved. Found out once.
bool FeatureClusters::ringsHold(const OverlayFeature& feature) {
    enum { Unknown, Yes, No };
    std::atomic<char>& known = m_ringsHold[static_cast<std::size_t>(feature.position)];
    if (known == Unknown) {
        const RingViews& rings = feature.area.rings();
        const ClippedContours resolved = clipRings(rings, {}, JWBooleanUnion);
        known = outerRings(resolved.views()) <= outerRings(rings) ? Yes : No;
    }
    return known == Yes;
}

std::int64_t FeatureClusters::close(LayerSide& side) {
    listMembers();
    std::sort(m_doubtful.begin(), m_doubtful.end());
    std::int64_t compared = 0;
    for (std::size_t i = 0; i < m_parents.size() && !m_doubtful.empty(); ++i) {
        if (m_parents[i] == i) compared += grow(i, side);
    }
    if (compared > 0) listMembers();
    return compared;
}

/// Grows the cluster of a seed, when those of earlier seeds have grown, and returns how many
/// features it was compared with. A comparison that fails ends that, and is kept to be told.
std::int64_t FeatureClusters::grow(std::size_t seed, LayerSide& side) {
    Hits fresh = membersOf(static_cast<std::int64_t>(seed));
    if (fresh.size() < 2) return 0;
    Region region(m_tolerance);
    addPartners(seed, fresh, region);
    if (region.partners.empty()) return 0;
    std::int64_t compared = 0;
    std::vector<OverlayFeature> features;
    try {
        while (!fresh.empty()) {
            region.add(side, fresh);
            fresh.clear();
            for (auto& [position, partner] : region.partners) {
                if (!partner.due || root(position) == seed) continue;
                void* hit = payloadOf(static_cast<std::int64_t>(position));
                features.clear();
                side.fetch(&hit, 1, features);
                partner = {false, features.front().area.envelop()};
                ++compared;
                if (!region.overlapsTruly(features.front().area)) continue;
                fresh = membersOf(static_cast<std::int64_t>(root(position)));
                join(seed, position);
                addPartners(seed, fresh, region);
                break;
            }
        }
    } catch (const ClipFailure& failure) {
        m_failures[seed] = failure.what();
    }
    return compared;
}

/// Adds the doubtful partners of some features that belong to no earlier seed.
void FeatureClusters::addPartners(std::size_t seed, const Hits& features, Region& region) {
    for (void* hit : features) {
        const auto position = static_cast<std::size_t>(positionOf(hit));
        auto pair = std::lower_bound(m_doubtful.begin(), m_doubtful.end(), Pair(position, 0));
        for (; pair != m_doubtful.end() && pair->first == position; ++pair) {
            if (root(pair->second) > seed) region.partners.emplace(pair->second, Region::Partner());
        }
    }
}

void FeatureClusters::listMembers() {
    m_first.assign(m_parents.size() + 1, 0);
    for (std::size_t i = 0; i < m_parents.size(); ++i) {
        m_parents[i] = m_parents[m_parents[i]];  // of a smaller position, hence a root already
        ++m_first[m_parents[i] + 1];
    }
    for (std::size_t i = 1; i < m_first.size(); ++i) m_first[i] += m_first[i - 1];
    std::vector<std::size_t> next(m_first.begin(), m_first.end() - 1);
    m_members.resize(m_parents.size());
    for (std::size_t i = 0; i < m_parents.size(); ++i) {
        m_members[next[m_parents[i]]++] = payloadOf(static_cast<std::int64_t>(i));
    }
}

const char* FeatureClusters::failureOf(std::int64_t seed) const {
    const auto found = m_failures.find(static_cast<std::size_t>(seed));
    return found != m_failures.end() ? found->second.c_str() : nullptr;
}

Hits FeatureClusters::membersOf(std::int64_t seed) const {
    const auto at = m_members.begin();
    const std::size_t s = static_cast<std::size_t>(seed);
    return Hits(at + static_cast<std::ptrdiff_t>(m_first[s]),
                at + static_cast<std::ptrdiff_t>(m_first[s + 1]));
}

}  // namespace jws::detail
