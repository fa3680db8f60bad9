// SPDX-License-Identifier: MIT
#include "overlay/multi_parts.h"

#include <cmath>

namespace jws::detail {
namespace {

const char* const kNotFinite = "a coordinate is not a finite number";

/// Grows the rectangle; false for a coordinate that is not finite.
bool include(const JWRawPoint& p, JWEnvelop& envelop) {
    if (!std::isfinite(p.x) || !std::isfinite(p.y)) return false;
    envelop.inflates_to_contain(p);
    return true;
}

bool include(const JWLineString& line, JWEnvelop& envelop) {
    for (int i = 0; i < line.getPointCount(); ++i) {
        if (!include(line.getPointsPtr()[i], envelop)) return false;
    }
    return true;
}

}  // namespace

const char* checkPoints(const JWGeometry& geometry, JWEnvelop& envelop) {
    JWMultiPoint points;
    if (!appendParts<JWMultiPoint, JWPoint>(geometry, points)) {
        return "the geometry is not a point or multi-point";
    }
    for (const JWPoint& point : points.getPointList()) {
        if (!include(JWRawPoint(point.getX(), point.getY()), envelop)) return kNotFinite;
    }
    return nullptr;
}

const char* checkLines(const JWGeometry& geometry, JWEnvelop& envelop) {
    if (geometry.getGeometryType() == JWGeometryLineString) {
        return include(static_cast<const JWLineString&>(geometry), envelop) ? nullptr : kNotFinite;
    }
    if (geometry.getGeometryType() != JWGeometryMultiLineString) {
        return "the geometry is not a line string or multi-line string";
    }
    for (const JWLineString& line :
         static_cast<const JWMultiLineString&>(geometry).getMemberList()) {
        if (!include(line, envelop)) return kNotFinite;
    }
    return nullptr;
}

std::vector<std::unique_ptr<JWGeometry>> splitPolygons(std::unique_ptr<JWGeometry> area) {
    std::vector<std::unique_ptr<JWGeometry>> polygons;
    if (area->getGeometryType() != JWGeometryMultiPolygon) {
        polygons.push_back(std::move(area));
        return polygons;
    }
    for (JWPolygon& polygon : static_cast<JWMultiPolygon&>(*area).getMemberList()) {
        polygons.push_back(std::make_unique<JWPolygon>(std::move(polygon)));
    }
    return polygons;
}

}  // namespace jws::detail
