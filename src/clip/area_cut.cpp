// SPDX-License-Identifier: MIT
//
// What of the lines cannot reach the polygon is left out before the arrangement is made: they are
// cut off at a window of three times the polygon's size. Crossings within it are then rounded to
// the digits of the polygon's coordinates, however far the lines go, and what a cut costs does not
// depend on what lies elsewhere. The ends that this makes lie outside, where nothing is divided.
#include "clip/area_cut.h"

#include <algorithm>
#include <utility>

#include "boolean/line_cut.h"
#include "clip/edge_index.h"
#include "foundation/vertex_lists.h"

namespace jws::detail {
namespace {

JWEnvelop windowAround(const RingViews& rings) {
    JWEnvelop box = JWEnvelop::invalid();
    for (const RingView& ring : rings) box.inflates_to_contain(boxOf(ring.points, ring.count));
    const double margin = std::max(box.width(), box.height());
    JWEnvelop window = box;
    window.inflates(margin);
    const JWRawPoint corners[] = {window.bottom_left(), window.top_right()};
    return areFinite(corners, 2) ? window : box;
}

}  // namespace

std::vector<std::vector<JWRing>> cutPolygon(const JWPolygon& polygon, const LineIndex& lines) {
    RingViews rings;
    std::vector<JWRing> usable;
    for (const JWRing& ring : polygon.getRingList()) {
        if (ring.getPointCount() < 4) continue;
        usable.push_back(ring);
        usable.back().closeRing();
    }
    for (const JWRing& ring : usable) rings.push_back(viewOf(ring, 0));
    if (rings.empty()) return {};
    const std::vector<std::vector<JWRawPoint>> parts = lines.within(windowAround(rings));
    RingViews chains;
    for (const std::vector<JWRawPoint>& part : parts)
        chains.push_back({part.data(), static_cast<int>(part.size()), 0});
    std::vector<std::vector<JWRing>> faces;
    if (!chains.empty()) {
        const ClippedContours contours = cutAlongLines(rings, chains);
        for (int i = 0; i < contours.count(); ++i) {
            if (contours.hole(i) == 0) faces.emplace_back();
            faces.back().push_back(contours.ring(i));
        }
    }
    if (faces.empty()) faces.push_back(std::move(usable));
    for (std::vector<JWRing>& face : faces)
        for (JWRing& ring : face) ring.updateEnvelop();
    return faces;
}

}  // namespace jws::detail
