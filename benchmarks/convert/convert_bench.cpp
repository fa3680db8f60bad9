// SPDX-License-Identifier: MIT
//
// Polygons to the lines between them, beside the union and merging of boundaries by GEOS, which
// names no neighbours. Layers are in memory; reading and writing count for ours. Answers (the total
// length) are compared before times.
//
//   convert_bench [POLYGONS...]     by default 10000 and 100000
#include <cstdlib>
#include <string>
#include <vector>

#include "jw_geometryconvert.h"
#include "support/contest.h"
#include "support/geos_handles.h"
#include "support/tessellation.h"

namespace {

using namespace jws;
using bench::geos;
using bench::GeosPtr;

using Rings = std::vector<std::vector<double>>;

JWFeatureLayer* emptyLayer() {
    JWDataSource* source = JWDataSource::createInMemory();
    JWFeatureLayer* layer = source->createLayer("layer", JWWKBUnknown, nullptr);
    JWDataSource::destroyDataSource(source);
    return layer;
}

JWFeatureLayer* layerOf(const Rings& rings) {
    JWFeatureLayer* layer = emptyLayer();
    layer->beginTransaction();
    for (const std::vector<double>& xy : rings) {
        JWRing ring;
        for (std::size_t i = 0; i < xy.size(); i += 2) ring.addPoint(xy[i], xy[i + 1]);
        JWFeature feature;
        feature.setGeometryDirectly(new JWPolygon(std::move(ring)));
        layer->createFeature(&feature);
    }
    layer->commitTransaction();
    return layer;
}

double lengthOf(JWFeatureLayer& layer) {
    double length = 0;
    for (int i = 0; i < layer.getFeatureCount(); ++i) {
        JWGeometry* line = layer.getGeometry(i);
        length += static_cast<JWLineString*>(line)->getLength();
        delete line;
    }
    return length;
}

GeosPtr geosBoundaries(const Rings& rings) {
    std::vector<GEOSGeometry*> members;
    for (const std::vector<double>& xy : rings)
        members.push_back(bench::geosLine(xy.data(), xy.size() / 2).release());
    return GeosPtr(GEOSGeom_createCollection_r(geos(), GEOS_MULTILINESTRING, members.data(),
                                               static_cast<unsigned>(members.size())));
}

bool sharedLines(int polygons, int segments, int rounds) {
    bench::TessellationSpec spec;
    spec.polygons = polygons;
    spec.segments = segments;
    const bench::Tessellation cells(spec);
    Rings rings(static_cast<std::size_t>(polygons));
    for (std::size_t i = 0; i < rings.size(); ++i)
        cells.ring(static_cast<std::int64_t>(i), rings[i]);
    JWFeatureLayer* input = layerOf(rings);
    JWFeatureLayer* output = nullptr;
    const auto convert = [&](int threads, bool shared) {
        return [&, threads, shared] {
            output = emptyLayer();
            JWConvertOptions options;
            options.threads = threads;
            JWGeometryConvert::convertPolygonLayerToLineLayer(input, output, shared, options,
                                                              nullptr);
        };
    };
    const auto length = [&] { return lengthOf(*output); };
    const auto letGo = [&] { JWFeatureLayer::destroyFeatureLayer(output); };
    std::vector<bench::Entry> entries = {{"jwcg", convert(1, true), length, letGo},
                                         {"2 threads", convert(2, true), length, letGo}};
    const GeosPtr boundaries = geosBoundaries(rings);
    GeosPtr merged;
    if (polygons <= 100000) {
        entries.push_back({"geos",
                           [&] {
                               const GeosPtr united(GEOSUnaryUnion_r(geos(), boundaries.get()));
                               merged.reset(GEOSLineMerge_r(geos(), united.get()));
                           },
                           [&] {
                               double sum = 0;
                               GEOSLength_r(geos(), merged.get(), &sum);
                               return sum;
                           }});
    }
    const bool agreed = bench::contest(
        "shared lines " + std::to_string(polygons) + " x " + std::to_string(4 * segments), entries,
        1e-9, rounds);
    JWFeatureLayer::destroyFeatureLayer(input);
    return agreed;
}

}  // namespace

int main(int argc, char** argv) {
    std::setvbuf(stdout, nullptr, _IOLBF, 0);
    std::vector<int> sizes;
    for (int i = 1; i < argc; ++i) sizes.push_back(std::atoi(argv[i]));
    if (sizes.empty()) sizes = {10000, 100000};
    bool agreed = true;
    for (const int n : sizes) {
        for (const int segments : {2, 8}) agreed &= sharedLines(n, segments, n > 10000 ? 3 : 7);
    }
    return agreed ? 0 : 1;
}
