// SPDX-License-Identifier: MIT
//
// A sliver is a piece below 1e-9 of the mean polygon of B: whether two borders that coincide but
// for rounding leave one is decided by the last bit, and every library decides for itself.
#include "overlay/overlay_cases.h"

#include <cstdio>
#include <cstdlib>
#include <stdexcept>

#include "support/child_process.h"
#include "support/layer_file.h"
#include "support/tessellation.h"

namespace bench {

namespace {

constexpr double kSliver = 1e-9;
constexpr int kCellDegrees = 2;

struct Sizes {
    std::int64_t polygonsA = 0;
    std::int64_t polygonsB = 0;
    double meanAreaB = 0.0;
    std::int64_t repaired = 0;
};

void writeTessellation(std::int64_t polygons, std::uint64_t seed, double offset,
                       const std::string& path, const char* layer) {
    TessellationSpec spec;
    spec.polygons = polygons;
    spec.seed = seed;
    spec.offset = offset;
    const std::string error = writeGeoPackage(Tessellation(spec), path, layer);
    if (!error.empty()) throw std::runtime_error(error);
}

Summary summaryOf(const std::string& path) {
    Summary summary;
    forEachWkb(path,
               [&summary](const unsigned char* wkb, std::size_t size) { summary.add(wkb, size); });
    return summary;
}

Sizes writeLayers(const std::string& name, const CaseSettings& settings, const LayerPair& pair) {
    Sizes sizes;
    if (name == "counties") {
        sizes.repaired = copyRepaired(settings.dataDirectory + "/us_counties.gpkg", pair.a) +
                         copyRepaired(settings.dataDirectory + "/climate_cells.gpkg", pair.b);
    } else if (name == "countries") {
        sizes.repaired = copyRepaired(settings.dataDirectory + "/countries_50m.gpkg", pair.a);
        writeWorldCells(pair.b, kCellDegrees);
    } else {
        char* end = nullptr;
        const long long polygons = std::strtoll(name.c_str(), &end, 10);
        if (polygons < 1 || *end != '\0') throw std::runtime_error("no such case");
        writeTessellation(polygons, settings.seed, 0.0, pair.a, "tess_a");
        writeTessellation(polygons, settings.seed + 1, 0.5, pair.b, "tess_b");
    }
    sizes.polygonsA = summaryOf(pair.a).features();
    const Summary b = summaryOf(pair.b);
    sizes.polygonsB = b.features();
    sizes.meanAreaB = b.meanArea();
    return sizes;
}

}  // namespace

OverlayCase prepareCase(const std::string& name, const CaseSettings& settings) {
    OverlayCase made;
    made.pair.a = settings.workDirectory + "/" + name + "_a.gpkg";
    made.pair.b = settings.workDirectory + "/" + name + "_b.gpkg";
    made.pair.workDirectory = settings.workDirectory;
    const auto sizes = inChild<Sizes>([&] { return writeLayers(name, settings, made.pair); });
    if (!sizes.ok()) throw std::runtime_error("case " + name + ": " + sizes.error);
    made.polygonsA = sizes.value.polygonsA;
    made.polygonsB = sizes.value.polygonsB;
    made.sliver = kSliver * sizes.value.meanAreaB;
    if (sizes.value.repaired > 0) {
        std::printf("%s: %lld invalid input geometries repaired for everybody\n", name.c_str(),
                    static_cast<long long>(sizes.value.repaired));
    }
    return made;
}

}  // namespace bench
