// SPDX-License-Identifier: MIT
//
// Cuts the polygons of one layer by those of another and writes the pieces, each with the
// attributes of both polygons that it comes from, to a new file:
//
//     intersect_layers us_states.gpkg climate_cells.gpkg state_cells.gpkg
#include <cstdio>
#include <memory>

#include "jw_feature.h"
#include "jw_geometryoverlay2.h"
#include "jw_report.h"

namespace {

int fail(const char* what) {
    std::fprintf(stderr, "%s: %s\n", what, jws::JWReport::lastError().text.c_str());
    return 1;
}

}  // namespace

int main(int argc, char** argv) {
    if (argc != 4) {
        std::fprintf(stderr, "usage: intersect_layers INPUT OVERLAY OUTPUT\n");
        return 2;
    }
    using jws::JWDataSource;
    using Source = std::unique_ptr<JWDataSource>;
    using Layer = std::unique_ptr<jws::JWFeatureLayer>;

    const Source inputFile(JWDataSource::open(argv[1]));
    const Layer input(inputFile ? inputFile->openLayer(0) : nullptr);
    if (!input) return fail(argv[1]);
    const Source overlayFile(JWDataSource::open(argv[2]));
    const Layer overlay(overlayFile ? overlayFile->openLayer(0) : nullptr);
    if (!overlay) return fail(argv[2]);
    const Source outputFile(JWDataSource::create(argv[3]));
    Layer output(outputFile ? outputFile->createLayer("pieces", jws::JWWKBMultiPolygon,
                                                      input->getSpatialReference())
                            : nullptr);
    if (!output) return fail(argv[3]);

    const int attributesOfBoth = 0;
    const double smallestArea = 0;  // keep every sliver
    const int featuresAtATime = 10000;
    const int pieces = jws::JWGeometryOverlay2::intersectPolygonLayers_mp(
        input.get(), overlay.get(), output.get(), attributesOfBoth, smallestArea, featuresAtATime);
    if (pieces < 0) return fail("intersection");
    if (!jws::JWFeatureLayer::destroyFeatureLayer(output.release())) return fail(argv[3]);

    std::printf("%d pieces in %s\n", pieces, argv[3]);
    return 0;
}
