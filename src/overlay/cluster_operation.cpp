// SPDX-License-Identifier: MIT
//
// Grows overlapping features together: two features belong together when they overlap truly, or
// when a chain of such pairs leads from one to the other. A first pass finds the pairs, each once,
// and joins them in a forest of positions; the seed of a cluster is its first feature. A second
// pass unites each cluster at once. Growing a region hit by hit would give the same clusters, but
// walk the grown region again for each of them.
//
// Two features overlap truly when what they have in common reaches the tolerance, and when their
// union has fewer outer rings than the two together. The second holds for every two areas whose
// rings are what they seem, so that the union need not be made; it can fail for outer rings that
// touch or cross themselves.
#include <atomic>
#include <cmath>
#include <mutex>
#include <utility>

#include "overlay/area_check.h"
#include "overlay/area_union.h"
#include "overlay/geometry_overlay.h"
#include "overlay/layer_operations.h"

namespace jws::detail {
namespace {

int outerRings(const RingViews& rings) {
    int count = 0;
    for (const RingView& ring : rings) count += ring.hole == 0 ? 1 : 0;
    return count;
}

class Clusters {
  public:
    explicit Clusters(std::int64_t count)
        : m_parents(static_cast<std::size_t>(count)), m_ringsHold(static_cast<std::size_t>(count)) {
        for (std::size_t i = 0; i < m_parents.size(); ++i) m_parents[i] = i;
    }

    /// Puts two features into one cluster. Any number of threads; the clusters do not depend on
    /// the order of the calls.
    void join(std::int64_t i, std::int64_t j) {
        const std::lock_guard<std::mutex> lock(m_mutex);
        const std::size_t a = root(static_cast<std::size_t>(i));
        const std::size_t b = root(static_cast<std::size_t>(j));
        m_parents[std::max(a, b)] = std::min(a, b);
    }

    /// Lists the members, when all pairs have been joined.
    void close() {
        m_first.assign(m_parents.size() + 1, 0);
        for (std::size_t i = 0; i < m_parents.size(); ++i) {
            m_parents[i] = m_parents[m_parents[i]];  // of a smaller position, hence a root already
            ++m_first[m_parents[i] + 1];
        }
        for (std::size_t i = 1; i < m_first.size(); ++i) m_first[i] += m_first[i - 1];
        std::vector<std::size_t> next(m_first.begin(), m_first.end() - 1);
        m_members.resize(m_parents.size());
        for (std::size_t i = 0; i < m_parents.size(); ++i) {
            m_members[next[m_parents[i]]++] = LayerSide::payloadOf(static_cast<std::int64_t>(i));
        }
    }

    std::size_t seedOf(std::int64_t i) const { return m_parents[static_cast<std::size_t>(i)]; }
    /// The members of the cluster with a seed, in order; none when the feature is no seed.
    Hits membersOf(std::int64_t seed) const {
        const auto at = m_members.begin();
        const std::size_t s = static_cast<std::size_t>(seed);
        return Hits(at + static_cast<std::ptrdiff_t>(m_first[s]),
                    at + static_cast<std::ptrdiff_t>(m_first[s + 1]));
    }

    /// The union of this feature and another has fewer outer rings than both, if they overlap:
    /// because as many rings as it stores enclose it when it is resolved. Found out once.
    bool ringsHold(const OverlayFeature& feature) {
        enum { Unknown, Yes, No };
        std::atomic<char>& known = m_ringsHold[static_cast<std::size_t>(feature.position)];
        if (known == Unknown) {
            const RingViews& rings = feature.area.rings();
            const ClippedContours resolved = clipRings(rings, {}, JWBooleanUnion);
            known = outerRings(resolved.views()) <= outerRings(rings) ? Yes : No;
        }
        return known == Yes;
    }

  private:
    std::size_t root(std::size_t i) {
        while (m_parents[i] != i) i = m_parents[i] = m_parents[m_parents[i]];
        return i;
    }

    std::mutex m_mutex;
    std::vector<std::size_t> m_parents;  ///< never behind the feature itself
    std::vector<std::size_t> m_first;    ///< of each seed's members in `m_members`
    Hits m_members;
    std::vector<std::atomic<char>> m_ringsHold;
};

struct FindPairs {
    std::shared_ptr<Clusters> clusters;
    double tolerance;

    void operator()(const OverlayFeature& self, Surroundings& around, Emitter& out) const {
        while (const OverlayFeature* other = around.next()) {
            if (other->position <= self.position || !self.area.overlaps(other->area)) continue;
            try {
                if (belongTogether(self, *other)) clusters->join(self.position, other->position);
            } catch (const ClipFailure& failure) {
                out.reject(*other, failure.what());
            }
        }
    }

    bool belongTogether(const OverlayFeature& a, const OverlayFeature& b) const {
        if (!reaches(intersectAreas(a.area, b.area), tolerance)) return false;
        if (clusters->ringsHold(a) && clusters->ringsHold(b)) return true;
        const ClippedContours united = clipRings(a.area.rings(), b.area.rings(), JWBooleanUnion);
        int kept = 0;
        for (int i = 0; i < united.count(); ++i) {
            if (united.hole(i) == 0 && !(areaOf(united.view(i)) < tolerance)) ++kept;
        }
        return kept > 0 && kept < outerRings(a.area.rings()) + outerRings(b.area.rings());
    }
};

/// Writes the cluster of each seed, with the attributes of its first feature of either layer.
struct UniteClusters {
    std::shared_ptr<Clusters> clusters;
    double tolerance;
    bool check;

    void operator()(const OverlayFeature& self, Surroundings& around, Emitter& out) const {
        Hits members = clusters->membersOf(self.position);
        if (members.empty()) return;
        LayerSide& side = around.own();
        const bool second = side.input().originOf(self.position).second;
        std::shared_ptr<const JWFeature> firsts[2];
        firsts[second ? 1 : 0] = self.feature;
        if (members.size() == 1) {
            out.emitCopy(self, firsts[0].get(), firsts[1].get());
            return;
        }
        AreaUnion united(everywhere());
        double expected = 0;
        side.forEach(members, [&](const OverlayFeature& member) {
            united.add(member.area);
            auto& first = firsts[side.input().originOf(member.position).second ? 1 : 0];
            if (!first) first = member.feature;
            if (check) expected += beyondEarlier(member, side);
        });
        const ClippedContours contours = united.contours();
        out.emit(buildArea(contours, tolerance), firsts[0].get(), firsts[1].get());
        if (check) out.addMismatch(std::fabs(areaOf(contours) - expected));
    }

    /// The area of a member outside of earlier members.
    double beyondEarlier(const OverlayFeature& member, LayerSide& side) const {
        Hits hits, earlier;
        side.search(member.area.envelop(), hits);
        for (void* hit : hits) {
            const std::int64_t position = LayerSide::positionOf(hit);
            if (position < member.position &&
                clusters->seedOf(position) == clusters->seedOf(member.position)) {
                earlier.push_back(hit);
            }
        }
        AreaUnion cutters(member.area.envelop());
        side.forEach(earlier, [&](const OverlayFeature& other) { cutters.add(other.area); });
        return areaOf(eraseUnion(member.area, cutters));
    }
};

}  // namespace

Passes clusterPasses(const JWOverlayOptions& options, std::int64_t count) {
    const auto clusters = std::make_shared<Clusters>(count);
    OverlayPass find = {false, FindPairs{clusters, options.tolerance}};
    OverlayPass unite = {false, UniteClusters{clusters, options.tolerance, options.checkAreas}};
    unite.prepare = [clusters] { clusters->close(); };
    find.texts.start = [](int group) {
        JWReport::message("group %d checking overlap in input group...\n", group);
    };
    unite.texts.end = [](int block, int written, int features) {
        JWReport::message("union:%d in %d\n", written, features);
        JWReport::message("block %d wrote %d features to result layer!\n", block, written);
    };
    return {std::move(find), std::move(unite)};
}

}  // namespace jws::detail
