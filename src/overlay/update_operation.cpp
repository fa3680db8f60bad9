// SPDX-License-Identifier: MIT
//
// Update: B laid over A. With borders, A outside of B and then B as it is. Without, a feature of A
// that overlaps features of B goes, as far as it lies outside of B, to the first of them, in the
// order of B. So every point of A outside of B is in one result for each feature of A that covers
// it, and nothing of B is touched by another feature's growth.
#include <cmath>
#include <memory>
#include <utility>

#include "boolean/area_union.h"
#include "overlay/area_check.h"
#include "overlay/geometry_overlay.h"
#include "overlay/layer_operations.h"

namespace jws::detail {
namespace {

/// For each feature of A the position of the feature of B that absorbs it; −1 for none. Workers
/// write into the slots of their own features only.
using Owners = std::vector<std::int64_t>;

/// Features of A: finds the owner; those without one are written as far as they are outside of B.
struct FindOwner {
    std::shared_ptr<Owners> owners;
    JWOverlayOptions options;

    void operator()(const OverlayFeature& self, Surroundings& around, Emitter& out) const {
        AreaUnion cutters(self.area.envelop());
        while (const OverlayFeature* other = around.next()) {
            if (!self.area.overlaps(other->area)) continue;
            if (reaches(intersectAreas(self.area, other->area), options.tolerance)) {
                (*owners)[static_cast<std::size_t>(self.position)] = other->position;
                return;
            }
            cutters.add(other->area);
        }
        if (cutters.isEmpty()) return out.emitCopy(self, self.get(), nullptr);
        const ClippedContours rest = eraseUnion(self.area, cutters);
        out.emit(buildArea(rest, options.tolerance), self.get(), nullptr);
        if (options.checkAreas) out.addMismatch(mismatchOfCut(self.area, cutters, areaOf(rest)));
    }
};

/// Features of B: each grows by the rests of the features that it owns. Where that fails it stays
/// what it is, and they are listed.
struct Absorb {
    std::shared_ptr<Owners> owners;
    JWOverlayOptions options;

    void operator()(const OverlayFeature& self, Surroundings& around, Emitter& out) const {
        try {
            absorb(self, around, out);
        } catch (const ClipFailure& failure) {
            around.restart();
            while (const OverlayFeature* other = around.next()) {
                if (owns(self, *other)) out.lose(*other, failure.what());
            }
            out.emitCopy(self, nullptr, self.get());
        }
    }

    bool owns(const OverlayFeature& self, const OverlayFeature& other) const {
        return (*owners)[static_cast<std::size_t>(other.position)] == self.position;
    }

    /// Emits last, when nothing can fail any more.
    void absorb(const OverlayFeature& self, Surroundings& around, Emitter& out) const {
        AreaUnion grown(everywhere()), rests(everywhere());
        while (const OverlayFeature* other = around.next()) {
            if (!owns(self, *other)) continue;
            auto rest = std::make_shared<const ClippedContours>(restOf(*other, around.own(), out));
            if (rest->count() == 0) continue;
            const Area area(rest->views(), rest);
            grown.add(area);
            if (options.checkAreas) rests.add(area);
        }
        if (grown.isEmpty()) return out.emitCopy(self, nullptr, self.get());
        grown.add(self.area);
        const ClippedContours contours = grown.contours();
        if (options.checkAreas) {
            const double parts = resolvedArea(self.area) + areaOf(rests.contours());
            out.addMismatch(std::fabs(areaOf(contours) - parts));
        }
        out.emit(buildArea(contours, options.tolerance), nullptr, self.get());
    }

    /// A feature of A outside of all of B.
    ClippedContours restOf(const OverlayFeature& feature, LayerSide& sideB, Emitter& out) const {
        Hits hits;
        sideB.search(feature.area.envelop(), hits);
        AreaUnion cutters(feature.area.envelop());
        sideB.forEach(hits, [&](const OverlayFeature& other) { cutters.add(other.area); });
        ClippedContours rest = eraseUnion(feature.area, cutters);
        if (options.checkAreas) out.addMismatch(mismatchOfCut(feature.area, cutters, areaOf(rest)));
        return rest;
    }
};

void copyOfB(const OverlayFeature& self, Surroundings&, Emitter& out) {
    out.emitCopy(self, nullptr, self.get());
}

void announceRest(int written, int copied) {
    JWReport::message("%d input features wrote to result layer!\n", written);
    JWReport::message("%d original input features wrote to result layer!\n", copied);
}

}  // namespace

Passes updatePasses(const JWOverlayOptions& options, std::int64_t countA) {
    if (options.keepBorders) {
        OverlayPass ofA = std::move(erasePasses(options, countA).front());
        ofA.summary = announceRest;
        OverlayPass ofB = {true, copyOfB};
        ofB.searches = false;
        return {std::move(ofA), std::move(ofB)};
    }
    const auto owners = std::make_shared<Owners>(static_cast<std::size_t>(countA), -1);
    OverlayPass ofA = {false, FindOwner{owners, options}};
    ofA.summary = announceRest;
    return {std::move(ofA), {true, Absorb{owners, options}}};
}

}  // namespace jws::detail
