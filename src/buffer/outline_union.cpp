// SPDX-License-Identifier: MIT
#include "buffer/outline_union.h"

#include <algorithm>
#include <cstdint>
#include <utility>

#include "buffer/loop_levels.h"
#include "foundation/hilbert_order.h"
#include "trees/envelope_clusters.h"

namespace jws::detail {
namespace {

/// What rings wind around counter-clockwise at least once.
Outline covered(const Outline& rings) {
    double overlap = 0;
    return outlineOf(uniteDirected(viewsOf(rings), overlap));
}

/// The one call of the engine that unites areas. Its interiors are on the left.
Outline unite(const std::vector<RingViews>& areas) {
    if (!canUniteDirected) return outlineOf(uniteRings(areas));
    Outline turned;
    for (const RingViews& area : areas) {
        for (const RingView& ring : area) addRing(ring, true, ring.hole, turned);
    }
    return covered(turned);
}

JWEnvelop envelopOf(const Outline& area) {
    JWEnvelop envelop = JWEnvelop::invalid();
    for (int i = 0; i < area.count(); ++i) {
        const RingView ring = area.view(i);
        if (ring.hole != 0) continue;
        for (int k = 0; k < ring.count; ++k) envelop.inflates_to_contain(ring.points[k]);
    }
    return envelop;
}

/// Areas to be united, by their places in the list of all.
using Cluster = std::vector<int>;

/// Unites neighbours within each cluster; every cluster then has as many areas as it had groups.
void uniteNeighbours(std::vector<Outline>& outlines, std::vector<Cluster>& clusters,
                     const Team& team) {
    struct Group {
        int* first;
        int count;
    };
    std::vector<Group> groups;
    for (Cluster& cluster : clusters) {
        for (std::size_t i = 0; i < cluster.size(); i += kOutlinesAtOnce) {
            const std::size_t count = std::min<std::size_t>(kOutlinesAtOnce, cluster.size() - i);
            if (count > 1) groups.push_back({cluster.data() + i, static_cast<int>(count)});
        }
    }
    parallelChunks(teamFor(groups.size(), 2, team), static_cast<std::int64_t>(groups.size()), 1,
                   [&](std::int64_t i, std::int64_t) {
                       const Group& group = groups[static_cast<std::size_t>(i)];
                       std::vector<RingViews> members;
                       for (int k = 0; k < group.count; ++k) {
                           members.push_back(viewsOf(outlines[group.first[k]]));
                       }
                       Outline united = unite(members);
                       for (int k = 1; k < group.count; ++k) outlines[group.first[k]] = Outline();
                       outlines[group.first[0]] = std::move(united);
                       return true;
                   });
    for (Cluster& cluster : clusters) {
        std::size_t kept = 0;
        for (std::size_t i = 0; i < cluster.size(); i += kOutlinesAtOnce)
            cluster[kept++] = cluster[i];
        cluster.resize(kept);
    }
}

}  // namespace

Outline outlineOf(const ClippedContours& contours) {
    Outline area;
    for (int i = 0; i < contours.count(); ++i) {
        const RingView ring = contours.view(i);
        const bool clockwise = twiceArea(ring) < 0;
        addRing(ring, clockwise != (ring.hole == 0), ring.hole, area);
    }
    return area;
}

/// The engine starts holes where they touch no other ring.
void addRing(const RingView& ring, bool reversed, int hole, Outline& outline) {
    if (reversed) {
        for (int i = 0; i < ring.count; ++i) {
            outline.addPoint(ring.points[i > 0 ? ring.count - i : 0]);
        }
    } else {
        outline.addPoints(ring.points, ring.count);
    }
    outline.endRing(hole);
}

void uniteWinding(const RingView& loop, const Outline& others, Outline& result) {
    thread_local LoopLevels levels;
    if (others.count() == 0 && levels.resolve(loop, result)) return;
    Outline turned;
    addRing(loop, true, 0, turned);
    for (int i = 0; i < others.count(); ++i) addRing(others.view(i), true, 0, turned);
    const Outline united = covered(turned);
    for (int i = 0; i < united.count(); ++i) {
        addRing(united.view(i), false, united.view(i).hole, result);
    }
}

RingViews viewsOf(const Outline& area) {
    RingViews views;
    views.reserve(static_cast<std::size_t>(area.count()));
    for (int i = 0; i < area.count(); ++i) views.push_back(area.view(i));
    return views;
}

Outline resolved(const RingViews& rings) { return outlineOf(clipRings(rings, {}, JWBooleanUnion)); }

Outline uniteAtOnce(const Outline& rings) {
    std::vector<RingViews> areas;
    areas.reserve(static_cast<std::size_t>(rings.count()));
    for (int i = 0; i < rings.count(); ++i) areas.push_back({rings.view(i)});
    return unite(areas);
}

Outline uniteRingSets(const std::vector<SetToUnite>& sets, const Team& team) {
    std::vector<Outline> outlines(sets.size());
    parallelChunks(teamFor(sets.size(), 2, team), static_cast<std::int64_t>(sets.size()), 1,
                   [&](std::int64_t i, std::int64_t) {
                       const auto k = static_cast<std::size_t>(i);
                       if (!sets[k].isArea) {
                           outlines[k] = resolved(sets[k].rings);
                           return true;
                       }
                       for (const RingView& ring : sets[k].rings) {
                           addRing(ring, false, ring.hole, outlines[k]);
                       }
                       return true;
                   });
    return uniteOutlines(std::move(outlines), team);
}

Outline uniteOutlines(std::vector<Outline> outlines, const Team& team) {
    if (outlines.size() == 1) return std::move(outlines.front());
    std::vector<JWEnvelop> envelops;
    envelops.reserve(outlines.size());
    for (const Outline& area : outlines) envelops.push_back(envelopOf(area));
    const PositionLists lists = clusterByContact(envelops);
    std::vector<Cluster> clusters(lists.count());
    for (std::size_t i = 0; i < clusters.size(); ++i) {
        clusters[i].assign(lists.begin(i), lists.end(i));
        if (clusters[i].size() > kOutlinesAtOnce) sortAlongHilbertCurve(envelops, clusters[i]);
    }
    const auto large = [](const Cluster& cluster) { return cluster.size() > 1; };
    while (std::any_of(clusters.begin(), clusters.end(), large)) {
        uniteNeighbours(outlines, clusters, team);
    }
    Outline all;
    for (const Cluster& cluster : clusters) {
        const Outline& area = outlines[static_cast<std::size_t>(cluster.front())];
        for (int i = 0; i < area.count(); ++i) addRing(area.view(i), false, area.view(i).hole, all);
    }
    return all;
}

}  // namespace jws::detail
