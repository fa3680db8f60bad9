// SPDX-License-Identifier: MIT
//
// Calls both installed libraries: a geometry operation, then a layer operation on layers in memory.
#include <cmath>
#include <cstdio>
#include <memory>

#include "jw_feature.h"
#include "jw_geometry.h"
#include "jw_geometryoverlay2.h"
#include "jw_report.h"

using namespace jws;

namespace {

std::unique_ptr<JWGeometry> fromWkt(const char* wkt) {
    JWGeometry* geometry = nullptr;
    JWGeometryFactory::createFromWkt(wkt, &geometry);
    return std::unique_ptr<JWGeometry>(geometry);
}

std::unique_ptr<JWFeatureLayer> squareLayer(JWDataSource& source, const char* name, double corner) {
    std::unique_ptr<JWFeatureLayer> layer(source.createLayer(name, JWWKBPolygon, nullptr));
    JWRing ring;
    const JWRawPoint corners[] = {
        {corner, corner}, {corner + 10, corner}, {corner + 10, corner + 10}, {corner, corner + 10}};
    ring.addPoints(corners, 4);
    JWFeature feature;
    feature.setGeometryDirectly(new JWPolygon(ring), true);
    if (!layer || !layer->createFeature(&feature)) return nullptr;
    return layer;
}

int fail(const char* what) {
    std::fprintf(stderr, "%s: %s\n", what, JWReport::lastError().text.c_str());
    return 1;
}

}  // namespace

int main() {
    const auto a = fromWkt("POLYGON ((0 0, 10 0, 10 10, 0 10, 0 0))");
    const auto b = fromWkt("POLYGON ((5 5, 15 5, 15 15, 5 15, 5 5))");
    const std::unique_ptr<JWGeometry> both(
        JWGeometryOverlay2::polygonIntersectPolygon(a.get(), b.get(), 0));
    const auto* polygon = dynamic_cast<const JWPolygon*>(both.get());
    if (!polygon || polygon->getArea() != 25) return fail("intersection of two squares");

    const std::unique_ptr<JWDataSource> memory(JWDataSource::createInMemory());
    if (!memory) return fail("source in memory");
    const auto left = squareLayer(*memory, "left", 0);
    const auto right = squareLayer(*memory, "right", 5);
    const std::unique_ptr<JWFeatureLayer> result(
        memory->createLayer("result", JWWKBPolygon, nullptr));
    if (!left || !right || !result) return fail("layers in memory");
    const int written = JWGeometryOverlay2::intersectPolygonLayers_mp(left.get(), right.get(),
                                                                      result.get(), 0, 0.0, 1000);
    if (written != 1 || result->getFeatureCount() != 1) return fail("intersection of two layers");
    return 0;
}
