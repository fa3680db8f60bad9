// SPDX-License-Identifier: MIT
//
// Intersection, difference and union of two polygons given as well-known text, as a program with
// geometries of its own would call them: no file and no layer.
#include <cstdio>
#include <memory>

#include "jw_geometry.h"
#include "jw_geometryoverlay2.h"

using jws::JWGeometry;
using jws::JWGeometryOverlay2;
using Geometry = std::unique_ptr<JWGeometry>;

namespace {

Geometry fromWkt(const char* wkt) {
    JWGeometry* geometry = nullptr;
    jws::JWGeometryFactory::createFromWkt(wkt, &geometry);  // null when the text is not well-formed
    return Geometry(geometry);
}

double area(const JWGeometry& geometry) {
    if (const auto* polygon = dynamic_cast<const jws::JWPolygon*>(&geometry))
        return polygon->getArea();
    if (const auto* multi = dynamic_cast<const jws::JWMultiPolygon*>(&geometry))
        return multi->getArea();
    return 0;
}

/// Prints a result; null means that it has no area.
void print(const char* title, const Geometry& result) {
    char* wkt = nullptr;
    if (result) result->exportToWkt(&wkt);
    std::printf("%s: area %g\n    %s\n", title, result ? area(*result) : 0.0,
                wkt ? wkt : "POLYGON EMPTY");
    JWGeometry::freeWkt(wkt);
}

}  // namespace

int main(int argc, char** argv) {
    const Geometry a = fromWkt(argc > 2 ? argv[1] : "POLYGON ((0 0, 10 0, 10 10, 0 10, 0 0))");
    const Geometry b = fromWkt(argc > 2 ? argv[2] : "POLYGON ((5 5, 15 5, 15 15, 5 15, 5 5))");
    if (!a || !b) {
        std::fprintf(stderr, "usage: geometry_overlay [WKT WKT]\n");
        return 2;
    }
    const double smallestRing = 0;  // result rings of a smaller area are dropped
    print("A and B",
          Geometry(JWGeometryOverlay2::polygonIntersectPolygon(a.get(), b.get(), smallestRing)));
    print("A minus B",
          Geometry(JWGeometryOverlay2::polygonErasePolygon(a.get(), b.get(), smallestRing)));
    print("A or B",
          Geometry(JWGeometryOverlay2::polygonUnionPolygonToOne(a.get(), b.get(), smallestRing)));
    return 0;
}
