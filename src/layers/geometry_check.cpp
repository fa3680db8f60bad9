// SPDX-License-Identifier: MIT
#include "layers/geometry_check.h"

#include "foundation/vertex_lists.h"

namespace jws::detail {
namespace {

struct Kind {
    unsigned kind;
    const char* name;
};

constexpr Kind kKinds[] = {{PointKind, "a point"},
                           {LineKind, "a line"},
                           {AreaKind, "a polygon"},
                           {BagKind, "a collection of several kinds"}};

unsigned kindOf(const JWGeometry& geometry) {
    switch (geometry.getGeometryType()) {
        case JWGeometryPoint:
        case JWGeometryMultiPoint:
            return PointKind;
        case JWGeometryLineString:
        case JWGeometryMultiLineString:
            return LineKind;
        case JWGeometryPolygon:
        case JWGeometryMultiPolygon:
            return AreaKind;
        case JWGeometryGeometryBag:
            return BagKind;
        default:
            return 0;
    }
}

/// "a line or a polygon".
std::string nameOf(unsigned kinds) {
    std::string names;
    for (const Kind& row : kKinds) {
        if ((kinds & row.kind) == 0) continue;
        names += (names.empty() ? "" : " or ") + std::string(row.name);
    }
    return names.empty() ? "of another kind" : names;
}

}  // namespace

GeometryCheck checkGeometry(const JWFeature& feature, unsigned kinds) {
    if (feature.isGeometryUnread()) return GeometryCheck::Unread;
    if (feature.isGeometryEmpty()) return GeometryCheck::Empty;
    const JWGeometry& geometry = *feature.getGeometryPtr();
    if ((kindOf(geometry) & kinds) == 0) return GeometryCheck::WrongKind;
    return isFinite(geometry) ? GeometryCheck::Usable : GeometryCheck::NotFinite;
}

std::string reasonOf(GeometryCheck check, const JWFeature& feature, unsigned kinds) {
    switch (check) {
        case GeometryCheck::Unread:
            return kUnreadGeometry;
        case GeometryCheck::WrongKind:
            return "the geometry is " + nameOf(kindOf(*feature.getGeometryPtr())) + ", not " +
                   nameOf(kinds);
        case GeometryCheck::NotFinite:
            return "a coordinate is not a finite number";
        case GeometryCheck::Usable:
        case GeometryCheck::Empty:
            break;
    }
    return {};
}

double areaOf(const JWGeometry& geometry) {
    if (geometry.getGeometryType() == JWGeometryPolygon) {
        return static_cast<const JWPolygon&>(geometry).getArea();
    }
    double area = 0;
    if (geometry.getGeometryType() == JWGeometryMultiPolygon) {
        for (const JWPolygon& p : static_cast<const JWMultiPolygon&>(geometry).getMemberList()) {
            area += p.getArea();
        }
    }
    return area;
}

}  // namespace jws::detail
