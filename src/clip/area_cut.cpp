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
#include "clip/cutter.h"
#include "foundation/vertex_lists.h"

namespace jws::detail {
namespace {

using PointLists = std::vector<std::vector<JWRawPoint>>;

/// The parts of lines in a window.
PointLists partsWithin(const JWGeometry& lines, const JWEnvelop& window) {
    const std::vector<JWRawPoint> corners = {window.bottom_left(), window.bottom_right(),
                                             window.top_right(), window.top_left()};
    const Cutter cutter(RingViews{{corners.data(), static_cast<int>(corners.size()), 0}});
    PointLists parts;
    const auto take = [&](const JWLineString& line) {
        const JWEnvelop box = boxOf(line.getPointsPtr(), line.getPointCount());
        if (window.isDisjoin(box)) return;
        if (window.isContain(box)) {
            parts.push_back(line.getPointList());
            return;
        }
        cutter.split(line, AreaCut::InsideOut, [&](std::vector<JWRawPoint>& points, bool inside) {
            if (inside) parts.push_back(std::move(points));
        });
    };
    if (lines.getGeometryType() == JWGeometryLineString) {
        take(static_cast<const JWLineString&>(lines));
    } else {
        for (const JWLineString& line :
             static_cast<const JWMultiLineString&>(lines).getMemberList())
            take(line);
    }
    return parts;
}

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

std::vector<std::vector<JWRing>> cutPolygon(const JWPolygon& polygon, const JWGeometry& lines) {
    RingViews rings;
    std::vector<JWRing> usable;
    for (const JWRing& ring : polygon.getRingList()) {
        if (ring.getPointCount() < 4) continue;
        usable.push_back(ring);
        usable.back().closeRing();
    }
    for (const JWRing& ring : usable) rings.push_back(viewOf(ring, 0));
    if (rings.empty()) return {};
    const PointLists parts = partsWithin(lines, windowAround(rings));
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
