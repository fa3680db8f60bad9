// SPDX-License-Identifier: MIT
//
// Spatial join: features of A, whole, with the attributes of the features of B that they overlap.
//
// Every row tells how many there are, so they are counted first; the matches are then met once
// more, rather than held, since there may be very many.
#include <algorithm>
#include <utility>

#include "boolean/area_union.h"
#include "overlay/geometry_overlay.h"
#include "overlay/layer_operations.h"

namespace jws::detail {
namespace {

struct Join {
    JWOverlayOptions options;

    void operator()(const OverlayFeature& self, Surroundings& around, Emitter& out) const {
        std::vector<bool> matches;
        while (const OverlayFeature* other = around.next()) {
            matches.push_back(match(self, *other, out));
        }
        const std::int64_t count = std::count(matches.begin(), matches.end(), true);
        if (count == 0) {
            if (options.keepUnmatched) out.emitCopy(self, self.get(), nullptr);
            return;
        }
        around.restart();
        std::int64_t rows = options.rowPerPair ? count : 1;
        for (std::size_t i = 0; rows > 0; ++i) {
            const OverlayFeature* other = around.next();
            if (!matches[i]) continue;
            out.emitCopy(self, self.get(), other->get(), count);
            --rows;
        }
    }

    bool match(const OverlayFeature& self, const OverlayFeature& other, Emitter& out) const {
        try {
            return reaches(intersectAreas(self.area, other.area), options.tolerance);
        } catch (const ClipFailure& failure) {
            out.reject(other, failure.what());
            return false;
        }
    }
};

}  // namespace

Passes spatialJoinPasses(const JWOverlayOptions& options, std::int64_t) {
    OverlayPass pass = {false, Join{options}};
    pass.keepsEmpty = options.keepUnmatched;
    return {std::move(pass)};
}

}  // namespace jws::detail
