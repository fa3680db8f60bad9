// SPDX-License-Identifier: MIT
//
// Single geometries into multi-geometries and back.
#ifndef JW_OVERLAY_MULTI_PARTS_H
#define JW_OVERLAY_MULTI_PARTS_H

#include <memory>
#include <utility>
#include <vector>

#include "jw_geometry.h"

namespace jws::detail {

/// Tells why a geometry cannot be a point or multipoint of a dissolve, null when it can; `envelop`
/// receives its rectangle then.
const char* checkPoints(const JWGeometry& geometry, JWEnvelop& envelop);
/// The same for line strings and multi-line strings.
const char* checkLines(const JWGeometry& geometry, JWEnvelop& envelop);

/// Appends copies of the parts of `geometry`, a `Single` or a `Multi`; false for another kind.
template <class Multi, class Single>
bool appendParts(const JWGeometry& geometry, Multi& to) {
    const Multi kind;
    const Single part{};
    if (geometry.getGeometryType() == part.getGeometryType()) {
        to.getMemberList().push_back(static_cast<const Single&>(geometry));
    } else if (geometry.getGeometryType() == kind.getGeometryType()) {
        const std::vector<Single>& parts = static_cast<const Multi&>(geometry).getMemberList();
        to.getMemberList().insert(to.getMemberList().end(), parts.begin(), parts.end());
    } else {
        return false;
    }
    return true;
}

/// The parts of all geometries in one.
template <class Multi, class Single>
std::unique_ptr<Multi> gatherParts(const std::vector<const JWGeometry*>& geometries) {
    auto all = std::make_unique<Multi>();
    for (const JWGeometry* geometry : geometries) appendParts<Multi, Single>(*geometry, *all);
    all->updateEnvelop();
    return all;
}

/// The polygons of a polygon or multipolygon, each a geometry of its own.
std::vector<std::unique_ptr<JWGeometry>> splitPolygons(std::unique_ptr<JWGeometry> area);

}  // namespace jws::detail

#endif  // JW_OVERLAY_MULTI_PARTS_H
