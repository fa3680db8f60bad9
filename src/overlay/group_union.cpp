// SPDX-License-Identifier: MIT
#include "overlay/group_union.h"

#include <algorithm>

#include "foundation/hilbert_order.h"
#include "overlay/feature_check.h"
#include "overlay/geometry_overlay.h"

namespace jws::detail {
namespace {

constexpr std::ptrdiff_t kPatch = 1024;  // areas; their edges fit a processor's cache
constexpr std::size_t kMerge = 16;       // patches that are merged to one

/// Areas on their way to one, with an engine that unites two operands at a time.
class PairwiseUnion {
  public:
    /// Returns the area.
    double add(const JWGeometry& area) {
        RingViews rings;
        appendRings(area, rings);
        m_areas.push_back(clipRings(rings, {}, JWBooleanUnion));
        return areaOf(m_areas.back());
    }
    ClippedContours unite() const {
        std::vector<RingViews> sets;
        sets.reserve(m_areas.size());
        for (const ClippedContours& area : m_areas) sets.push_back(area.views());
        return uniteRings(sets);
    }

  private:
    std::vector<ClippedContours> m_areas;
};

}  // namespace

void GroupUnions::plan(std::vector<std::pair<const int*, const int*>> groups) {
    m_groups.clear();
    m_patches.clear();
    for (const auto& [begin, end] : groups) {
        m_groups.push_back({begin, end});
        if (canUniteDirected && end - begin > kPatch) split(m_groups.back());
    }
}

void GroupUnions::split(Group& group) {
    std::vector<JWEnvelop> envelops;
    std::vector<int> order;
    for (const int* p = group.begin; p != group.end; ++p) {
        envelops.push_back(m_items[static_cast<std::size_t>(*p)].envelop);
        order.push_back(static_cast<int>(order.size()));
    }
    sortAlongHilbertCurve(envelops, order);
    group.firstPatch = m_patches.size();
    for (std::size_t i = 0; i < order.size(); ++i) {
        if (i % kPatch == 0) m_patches.emplace_back();
        m_patches.back().positions.push_back(group.begin[order[i]]);
    }
    group.endPatch = m_patches.size();
}

void GroupUnions::addAreas(const int* begin, const int* end, AreaSum& total, Sum& account) const {
    for (const int* position = begin; position != end; ++position) {
        const DissolveItem& item = m_items[static_cast<std::size_t>(*position)];
        try {
            account.area += total.add(*item.feature->getGeometryPtr(), item.kind);
        } catch (const ClipFailure& failure) {
            account.failures.emplace_back(*position, failure.what());
        }
    }
}

void GroupUnions::addSum(const Sum& part, AreaSum& total, Sum& account) {
    total.add(part.edges);
    account.area += part.area;
    account.failures.insert(account.failures.end(), part.failures.begin(), part.failures.end());
}

void GroupUnions::sumPatch(Patch& patch) const {
    thread_local AreaSum total;
    total.clear();
    const int* positions = patch.positions.data();
    addAreas(positions, positions + patch.positions.size(), total, patch.sum);
    for (const Sum& part : patch.parts) addSum(part, total, patch.sum);
    patch.parts = {};
    patch.sum.edges = total.rest();
}

bool GroupUnions::planMerge() {
    std::vector<Patch> merged;
    bool more = false;
    for (Group& group : m_groups) {
        const std::size_t first = merged.size();
        const bool merge = group.endPatch - group.firstPatch > kMerge;
        more = more || merge;
        for (std::size_t i = group.firstPatch; i < group.endPatch; ++i) {
            if (!merge || (i - group.firstPatch) % kMerge == 0) merged.emplace_back();
            merged.back().parts.push_back(std::move(m_patches[i].sum));
        }
        group.firstPatch = first;
        group.endPatch = merged.size();
    }
    if (!more) {  // nothing to sum: each patch is its one part
        for (Patch& patch : merged) patch.sum = std::move(patch.parts.front());
    }
    m_patches = std::move(merged);
    return more;
}

GroupUnion GroupUnions::unite(std::size_t number) const {
    const Group& group = m_groups[number];
    GroupUnion result;
    try {
        const ClippedContours contours =
            canUniteDirected ? uniteDirected(group, result) : uniteInPairs(group, result);
        const double tolerance = group.end - group.begin > 1 ? m_tolerance : 0;
        BuiltArea built = buildArea(contours, tolerance);
        result.dropped = built.dropped;
        result.geometry = std::move(built.geometry);
    } catch (const ClipFailure& failure) {
        result = GroupUnion();
        for (const int* p = group.begin; p != group.end; ++p) {
            result.failures.emplace_back(*p, failure.what());
        }
    }
    return result;
}

ClippedContours GroupUnions::uniteDirected(const Group& group, GroupUnion& result) const {
    thread_local AreaSum total;
    total.clear();
    Sum account;
    if (group.firstPatch == group.endPatch) addAreas(group.begin, group.end, total, account);
    for (std::size_t i = group.firstPatch; i < group.endPatch; ++i) {
        addSum(m_patches[i].sum, total, account);
    }
    result.areaBefore = account.area;
    result.failures = std::move(account.failures);
    thread_local AreaSum::Edges edges;
    total.rest(edges);
    return AreaSum::unite(edges, result.overlap);
}

ClippedContours GroupUnions::uniteInPairs(const Group& group, GroupUnion& result) const {
    PairwiseUnion total;
    for (const int* p = group.begin; p != group.end; ++p) {
        const DissolveItem& item = m_items[static_cast<std::size_t>(*p)];
        result.areaBefore += total.add(*item.feature->getGeometryPtr());
    }
    ClippedContours contours = total.unite();
    result.overlap = result.areaBefore - areaOf(contours);
    return contours;
}

std::unique_ptr<JWGeometry> uniteFeatures(const std::vector<JWFeature*>& features,
                                          double tolerance) {
    AreaSum total;
    PairwiseUnion pairwise;
    for (const JWFeature* feature : features) {
        if (feature == nullptr || checkArea(*feature) != AreaCheck::Usable) continue;
        const JWGeometry& area = *feature->getGeometryPtr();
        if (canUniteDirected) {
            total.add(area, total.classify(area));
        } else {
            pairwise.add(area);
        }
    }
    if (!canUniteDirected) return buildArea(pairwise.unite(), tolerance).geometry;
    AreaSum::Edges edges = total.rest();
    double overlap = 0;
    return buildArea(AreaSum::unite(edges, overlap), tolerance).geometry;
}

}  // namespace jws::detail
