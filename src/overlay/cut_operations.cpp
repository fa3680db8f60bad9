// SPDX-License-Identifier: MIT
//
// Operations that cut each feature by those around it: the pieces inside, the rest outside, or
// both. What is outside is the feature minus the union of the others, taken off at once: taken off
// one after the other they would leave slivers along borders that two of them share.
#include <utility>

#include "boolean/area_union.h"
#include "overlay/area_check.h"
#include "overlay/layer_operations.h"

namespace jws::detail {
namespace {

/// What becomes of a feature.
struct Cut {
    bool pieces;  ///< what it has in common with each other feature, with the attributes of both
    bool rest;    ///< what is outside of all others, with its own attributes
    bool overB;   ///< it is a feature of B
    double tolerance;
    bool check;

    void operator()(const OverlayFeature& self, Surroundings& around, Emitter& out) const;
    double mismatch(const OverlayFeature& self, AreaUnion& cutters, const PieceCheck& made,
                    double outside, Surroundings& around) const;
    void emit(BuiltArea&& built, const OverlayFeature& self, const OverlayFeature* other,
              Emitter& out) const {
        const JWFeature* theirs = other != nullptr ? other->get() : nullptr;
        out.emit(std::move(built), overB ? theirs : self.get(), overB ? self.get() : theirs);
    }
};

void Cut::operator()(const OverlayFeature& self, Surroundings& around, Emitter& out) const {
    AreaUnion cutters(self.area.envelop());
    PieceCheck made(self.area, out.inputArea());
    while (const OverlayFeature* other = around.next()) {
        if (!self.area.overlaps(other->area)) {
            if (check) made.skip();
            continue;
        }
        if (pieces) {
            try {
                const ClippedContours common = intersectAreas(self.area, other->area);
                if (rest && !reaches(common, tolerance)) {  // stays in the rest
                    if (check) made.skip();
                    continue;
                }
                if (check) made.add(areaOf(common));
                if (common.count() == 0) continue;
                emit(buildArea(common, tolerance), self, other, out);
            } catch (const ClipFailure& failure) {
                if (check) made.skip();
                out.reject(*other, failure.what());
                continue;  // so that the area stays in the rest
            }
        }
        if (rest) cutters.add(other->area);
    }
    double outside = 0;
    if (rest && cutters.isEmpty()) {
        out.emitCopy(self, overB ? nullptr : self.get(), overB ? self.get() : nullptr);
        outside = out.inputArea();
    } else if (rest) {
        const ClippedContours left = eraseUnion(self.area, cutters);
        emit(buildArea(left, tolerance), self, nullptr, out);
        outside = areaOf(left);
    }
    if (check) out.addMismatch(mismatch(self, cutters, made, outside, around));
}

double Cut::mismatch(const OverlayFeature& self, AreaUnion& cutters, const PieceCheck& made,
                     double outside, Surroundings& around) const {
    if (!pieces) return cutters.isEmpty() ? 0 : mismatchOfCut(self.area, cutters, outside);
    double difference = 0;
    if (made.addsUp(outside, difference)) return difference;
    const double missed = made.mismatchOfPieces(around);
    return cutters.isEmpty() ? missed : missed + mismatchOfCut(self.area, cutters, outside);
}

OverlayPass cutPass(const JWOverlayOptions& options, bool pieces, bool rest, bool overB) {
    return {overB, Cut{pieces, rest, overB, options.tolerance, options.checkAreas}};
}

OverlayPass remainderOfB(const JWOverlayOptions& options) {
    return cutPass(options, false, true, true);
}

}  // namespace

Passes intersectPasses(const JWOverlayOptions& options, std::int64_t) {
    return {cutPass(options, true, false, false)};
}

Passes erasePasses(const JWOverlayOptions& options, std::int64_t) {
    return {cutPass(options, false, true, false)};
}

Passes identityPasses(const JWOverlayOptions& options, std::int64_t) {
    OverlayPass pass = cutPass(options, true, true, false);
    pass.texts.start = [](int group) {
        JWReport::message("group %d checking overlap in identity layer...\n", group);
        JWReport::message("do identity in group %d\n", group);
    };
    pass.texts.end = [](int group, int written, int features) {
        JWReport::message("group %d checking results %d in %d\n", group, written, features);
        JWReport::message("group %d writted %d features to result layer!\n", group, written);
    };
    return {std::move(pass)};
}

Passes planarUnionPasses(const JWOverlayOptions& options, std::int64_t) {
    OverlayPass ofA = cutPass(options, true, true, false);
    ofA.texts.start = [](int group) {
        JWReport::message("group %d doing intersect step TWO...\n", group);
        JWReport::message("group %d doing erase step ONE...\n", group);
    };
    OverlayPass ofB = remainderOfB(options);
    ofB.texts.start = [](int group) {
        JWReport::message("group %d doing erase step TWO...\n", group);
    };
    ofA.texts.end = ofB.texts.end = [](int group, int written, int) {
        JWReport::message("group %d writted %d features to result layer\n", group, written);
        JWReport::message("block %d wrote %d features to result layer!\n", group, written);
    };
    return {std::move(ofA), std::move(ofB)};
}

Passes symmetricalDifferencePasses(const JWOverlayOptions& options, std::int64_t) {
    OverlayPass ofA = cutPass(options, false, true, false), ofB = remainderOfB(options);
    ofA.texts.start = [](int group) {
        JWReport::message("group %d checking overlap in symmetrical difference layer...\n", group);
        JWReport::message("do symmetrical difference in group %d\n", group);
        JWReport::message("group %d doing step ONE...\n", group);
    };
    ofB.texts.start = [](int group) {
        JWReport::message("group %d checking overlap in input group...\n", group);
        JWReport::message("do symmetrical difference in group %d\n", group);
        JWReport::message("group %d doing step TWO...\n", group);
    };
    ofA.texts.end = ofB.texts.end = [](int group, int written, int features) {
        JWReport::message("group %d checking results %d in %d\n", group, written, features);
        JWReport::message("group %d writted %d features to result layer!\n", group, written);
    };
    return {std::move(ofA), std::move(ofB)};
}

}  // namespace jws::detail
