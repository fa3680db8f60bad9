// SPDX-License-Identifier: MIT
//
// Spatial join: features of A, whole, with the attributes of the features of B that they overlap.
#include <utility>

#include "overlay/area_union.h"
#include "overlay/geometry_overlay.h"
#include "overlay/layer_operations.h"

namespace jws::detail {
namespace {

struct Join {
    JWOverlayOptions options;

    void operator()(const OverlayFeature& self, Surroundings& around, Emitter& out) const {
        std::vector<std::shared_ptr<const JWFeature>> matches;  // one, unless each gets a row
        std::int64_t count = 0;
        while (const OverlayFeature* other = around.next()) {
            try {
                if (!reaches(intersectAreas(self.area, other->area), options.tolerance)) continue;
            } catch (const ClipFailure& failure) {
                out.reject(*other, failure.what());
                continue;
            }
            ++count;
            if (matches.empty() || options.rowPerPair) matches.push_back(other->feature);
        }
        if (matches.empty() && options.keepUnmatched) matches.push_back(nullptr);
        for (const auto& match : matches) {
            out.emitCopy(self, self.get(), match.get(), count);
        }
    }
};

}  // namespace

Passes spatialJoinPasses(const JWOverlayOptions& options, std::int64_t) {
    return {{false, Join{options}}};
}

}  // namespace jws::detail
