// SPDX-License-Identifier: MIT
//
// Parts of geometries inside an area or outside of it. Most geometries of a layer do not meet the
// outline of what clips them: where no edge reaches a geometry's rectangle, one of its points tells
// for all of it, and it is handed out as it is or not at all.
#include "clip/area_clip.h"

#include <utility>

#include "boolean/area_union.h"
#include "clip/geometry_clip.h"
#include "foundation/vertex_lists.h"
#include "overlay/geometry_overlay.h"

namespace jws::detail {
AreaClip::AreaClip(const RingViews& rings, std::shared_ptr<const void> owner, AreaCut cut)
    : m_area(rings, std::move(owner)), m_edges(rings), m_cut(cut) {
    m_area.prepare();
}

AreaClip AreaClip::ofRectangle(const JWEnvelop& rectangle, AreaCut cut) {
    const auto corners = std::make_shared<const std::vector<JWRawPoint>>(
        std::vector<JWRawPoint>{rectangle.bottom_left(), rectangle.bottom_right(),
                                rectangle.top_right(), rectangle.top_left()});
    AreaClip clip({{corners->data(), static_cast<int>(corners->size()), 0}}, corners, cut);
    clip.m_rectangle = rectangle;
    return clip;
}

bool AreaClip::holds(const JWRawPoint& p) const {
    return m_rectangle ? m_rectangle->contains(p) : m_edges.holds(p);
}

/// Tells whether a geometry with this rectangle lies on one side altogether.
bool AreaClip::isUncut(const JWEnvelop& box) const {
    if (!m_rectangle) return !m_edges.mayReach(box);
    const JWEnvelop& r = *m_rectangle;
    return r.isDisjoin(box) ||
           (r.minX < box.minX && box.maxX < r.maxX && r.minY < box.minY && box.maxY < r.maxY);
}

std::unique_ptr<JWGeometry> AreaClip::part(const JWGeometry& geometry, ClipSide side) const {
    const JWEnvelop box = boxAround(geometry);
    if (!box.isValid()) return nullptr;
    if (isUncut(box)) {
        const bool inside = holds(box.bottom_left());
        if (inside != (side == ClipSide::Inside)) return nullptr;
        if (geometry.getGeometryType() != JWGeometryLineString)
            return std::unique_ptr<JWGeometry>(geometry.clone());
    }
    switch (geometry.getGeometryType()) {
        case JWGeometryPoint: {
            const bool inside = holds(static_cast<const JWPoint&>(geometry).getRawPoint());
            if (inside != (side == ClipSide::Inside)) return nullptr;
            return std::unique_ptr<JWGeometry>(geometry.clone());
        }
        case JWGeometryMultiPoint: {
            auto kept = std::make_unique<JWMultiPoint>();
            for (const JWPoint& p : static_cast<const JWMultiPoint&>(geometry).getPointList()) {
                if (holds(p.getRawPoint()) == (side == ClipSide::Inside)) kept->addPoint(p);
            }
            if (kept->isEmpty()) return nullptr;
            kept->updateEnvelop();
            return kept;
        }
        case JWGeometryLineString:
        case JWGeometryMultiLineString:
            return partOfLines(geometry, side);
        case JWGeometryPolygon:
        case JWGeometryMultiPolygon:
            return partOfArea(geometry, side);
        case JWGeometryGeometryBag:
            return partOfBag(static_cast<const JWGeometryCollection&>(geometry), side);
        default:
            return nullptr;
    }
}

std::unique_ptr<JWGeometry> AreaClip::partOfLines(const JWGeometry& lines, ClipSide side) const {
    auto kept = std::make_unique<JWMultiLineString>();
    const Team alone(1);
    const auto add = [&](const JWLineString& line) {
        m_edges.split(line, m_cut, alone, [&](std::vector<JWRawPoint>& points, bool inside) {
            if (inside != (side == ClipSide::Inside)) return;
            kept->addLineString(JWLineString(std::move(points)));
        });
    };
    if (lines.getGeometryType() == JWGeometryLineString) {
        add(static_cast<const JWLineString&>(lines));
    } else {
        for (const JWLineString& line :
             static_cast<const JWMultiLineString&>(lines).getMemberList())
            add(line);
    }
    if (kept->isEmpty()) return nullptr;
    kept->updateEnvelop();
    return kept;
}

std::unique_ptr<JWGeometry> AreaClip::partOfArea(const JWGeometry& area, ClipSide side) const {
    const Area target(closedRings(area));
    if (side == ClipSide::Inside)
        return std::move(buildArea(intersectAreas(target, m_area), 0).geometry);
    RingSet shortened;
    RingViews near;
    m_area.appendWithin(target.envelop(), shortened, near);
    return std::move(buildArea(clipRings(target.rings(), near, JWBooleanDifference), 0).geometry);
}

std::unique_ptr<JWGeometry> AreaClip::partOfBag(const JWGeometryCollection& bag,
                                                ClipSide side) const {
    auto kept = std::make_unique<JWGeometryBag>();
    for (int i = 0; i < bag.getGeometryCount(); ++i) {
        if (const auto member = part(*bag.getGeometryPtrAt(i), side))
            kept->addGeometry(member.get());
    }
    if (kept->isEmpty()) return nullptr;
    kept->updateEnvelop();
    return kept;
}

bool isClipRectangle(const JWEnvelop& rectangle) {
    const JWRawPoint corners[] = {rectangle.bottom_left(), rectangle.top_right()};
    return rectangle.isValid() && areFinite(corners, 2);
}

std::unique_ptr<JWGeometry> partInRectangle(const AreaClip& clip, const JWGeometry& geometry) {
    if (!isFinite(geometry)) throw ClipRefused("a coordinate is not finite");
    return clip.part(geometry, ClipSide::Inside);
}

}  // namespace jws::detail
