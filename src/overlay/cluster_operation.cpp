// SPDX-License-Identifier: MIT
//
// Grows overlapping features together. A first pass compares features two by two, which makes the
// clusters (feature_clusters.h); a second pass unites each cluster at once. Growing a region hit by
// hit would give the same, but walk the grown region again for each of them.
#include <utility>

#include "boolean/area_union.h"
#include "overlay/feature_clusters.h"
#include "overlay/geometry_overlay.h"
#include "overlay/layer_operations.h"

namespace jws::detail {
namespace {

struct FindPairs {
    std::shared_ptr<FeatureClusters> clusters;

    void operator()(const OverlayFeature& self, Surroundings& around, Emitter& out) const {
        while (const OverlayFeature* other = around.next()) {
            if (other->position <= self.position || !self.area.overlaps(other->area)) continue;
            try {
                clusters->compare(self, *other);
            } catch (const ClipFailure& failure) {
                out.reject(*other, failure.what());
            }
        }
    }
};

/// Writes the cluster of each seed, with the attributes of its first feature of either layer.
struct UniteClusters {
    std::shared_ptr<FeatureClusters> clusters;
    double tolerance;
    bool check;

    void operator()(const OverlayFeature& self, Surroundings& around, Emitter& out) const {
        Hits members = clusters->membersOf(self.position);
        if (members.empty()) return;
        if (const char* failure = clusters->failureOf(self.position)) out.reject(failure);
        out.noteCluster(members);
        LayerSide& side = around.own();
        const bool second = side.input().originOf(self.position).second;
        std::shared_ptr<const JWFeature> firsts[2];
        firsts[second ? 1 : 0] = self.feature;
        if (members.size() == 1) {
            out.emitCopy(self, firsts[0].get(), firsts[1].get());
            return;
        }
        try {
            AreaUnion united(everywhere(), check);
            side.forEach(members, [&](const OverlayFeature& member) {
                united.add(member.area);
                auto& first = firsts[side.input().originOf(member.position).second ? 1 : 0];
                if (!first) first = member.feature;
            });
            const ClippedContours contours = united.contours();
            out.emit(buildArea(contours, tolerance), firsts[0].get(), firsts[1].get());
            out.addMismatch(united.mismatch());
        } catch (const ClipFailure& failure) {
            side.forEach(members,
                         [&](const OverlayFeature& member) { out.lose(member, failure.what()); });
        }
    }
};

/// The find pass has told of the blocks; the unite pass tells what comes of them.
void shareTexts(OverlayPass& find, OverlayPass& unite) {
    find.texts.feature = nullptr;
    find.texts.end = [](int, int, int) {};
    unite.texts.block = false;
}

}  // namespace

void announceSeed(TextBatch& texts, const FeatureCourse& course) {
    const std::vector<std::int64_t>& cluster = course.slot.cluster;
    if (cluster.empty()) return;
    texts.print("Seed:%d->", course.position);
    if (cluster.size() == 1) return;
    texts.print("seedsi:%d->%d in %d\n", course.position, cluster.size(), course.inLayer);
    for (std::size_t i = 1; i < cluster.size(); ++i) {
        texts.print("i=%d union index=%d\n", course.position, cluster[i]);
    }
    texts.print("union:%d in %d\n", cluster.size() - 1, course.inLayer);
}

Passes clusterPasses(const JWOverlayOptions& options, std::int64_t count) {
    const auto clusters = std::make_shared<FeatureClusters>(count, options.tolerance);
    OverlayPass find = {false, FindPairs{clusters}};
    OverlayPass unite = {false, UniteClusters{clusters, options.tolerance, options.checkAreas}};
    shareTexts(find, unite);
    find.texts.start = [](int group) {
        JWReport::message("group %d checking overlap in input group...\n", group);
    };
    unite.prepare = [clusters](LayerSide& side) {
        JWReport::message("looping un-compared feature count:%d\n", shown(clusters->close(side)));
    };
    unite.summary = [](int, int copied) {
        JWReport::message("%d original input features wrote to result layer!\n", copied);
    };
    return {std::move(find), std::move(unite)};
}

Passes clusterWithinPasses(const JWOverlayOptions& options, std::int64_t count) {
    const auto clusters = std::make_shared<FeatureClusters>(count, options.tolerance);
    OverlayPass find = {false, FindPairs{clusters}};
    OverlayPass unite = {false, UniteClusters{clusters, options.tolerance, options.checkAreas}};
    shareTexts(find, unite);
    unite.prepare = [clusters](LayerSide& side) { clusters->close(side); };
    unite.texts.feature = announceSeed;
    return {std::move(find), std::move(unite)};
}

}  // namespace jws::detail
