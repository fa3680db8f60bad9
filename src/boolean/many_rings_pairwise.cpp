// SPDX-License-Identifier: MIT
//
// Union and partition of many ring sets by the calls that GPC publishes, for a build with
// an installed GPC: sets are united in pairs of neighbours, and these in pairs again, so that a
// point takes part in as many unions as the number of sets has binary digits.
#include <algorithm>
#include <cmath>
#include <utility>

#include "boolean/ring_clip.h"
#include "jw_report.h"

namespace jws::detail {
namespace {

/// Tells whether all coordinates are finite, and the rectangle around them.
bool isFinite(const RingViews& rings, JWEnvelop& envelop) {
    envelop = JWEnvelop::invalid();
    for (const RingView& ring : rings) {
        for (int i = 0; i < ring.count; ++i) {
            if (!std::isfinite(ring.points[i].x) || !std::isfinite(ring.points[i].y)) return false;
            envelop.inflates_to_contain(ring.points[i]);
        }
    }
    return true;
}

bool areFinite(const std::vector<RingViews>& sets) {
    JWEnvelop envelop;
    for (const RingViews& rings : sets) {
        if (isFinite(rings, envelop)) continue;
        JWReport::setError(JWErrorInvalidArgument, "a coordinate of a polygon is not finite");
        return false;
    }
    return true;
}

}  // namespace

ClippedContours uniteRings(const std::vector<RingViews>& sets) {
    if (!areFinite(sets)) return {};
    std::vector<ClippedContours> level;
    for (std::size_t i = 0; i < sets.size(); i += 2) {
        const RingViews& second = i + 1 < sets.size() ? sets[i + 1] : RingViews();
        level.push_back(clipRings(sets[i], second, JWBooleanUnion));
    }
    for (; level.size() > 1; level.resize((level.size() + 1) / 2)) {
        for (std::size_t i = 0; i + 1 < level.size(); i += 2) {
            level[i / 2] = clipRings(level[i].views(), level[i + 1].views(), JWBooleanUnion);
        }
        if (level.size() % 2 == 1) std::swap(level[level.size() / 2], level.back());
    }
    return level.empty() ? ClippedContours() : std::move(level.front());
}

// Each set in turn cuts every part so far in two.
std::vector<PartOfSets> partitionRings(const RingViews& subject,
                                       const std::vector<RingViews>& sets) {
    std::vector<PartOfSets> parts;
    if (!areFinite({subject}) || !areFinite(sets)) return parts;
    const auto add = [](std::vector<PartOfSets>& to, std::uint32_t bits, ClippedContours part) {
        if (part.count() > 0) to.push_back({bits, std::move(part)});
    };
    add(parts, 0, clipRings(subject, {}, JWBooleanUnion));
    for (std::size_t i = 0; i < sets.size(); ++i) {
        std::vector<PartOfSets> cut;
        for (const PartOfSets& part : parts) {
            const RingViews rings = part.contours.views();
            add(cut, part.sets, clipRings(rings, sets[i], JWBooleanDifference));
            add(cut, part.sets | 1u << i, clipRings(rings, sets[i], JWBooleanIntersection));
        }
        parts = std::move(cut);
    }
    std::sort(parts.begin(), parts.end(),
              [](const PartOfSets& a, const PartOfSets& b) { return a.sets < b.sets; });
    return parts;
}

ClippedContours uniteDirected(const RingViews&, double&) { throw ClipFailure(); }

}  // namespace jws::detail
