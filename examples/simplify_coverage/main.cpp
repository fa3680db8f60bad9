// SPDX-License-Identifier: MIT
//
// Draws what simplification does to polygons that share borders, as SVG: the layer as it is, each
// polygon simplified by itself, and all of them as a coverage. Polygons are filled half
// transparent, so that gaps come out white and overlaps dark:
//
//     simplify_coverage us_counties.gpkg 0.1 -79 36.5 -76 39 coverage.svg
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <string>

#include "jw_feature.h"
#include "jw_geometrysimplicify.h"
#include "jw_report.h"

namespace {

using namespace jws;
using Source = std::unique_ptr<JWDataSource>;
using Layer = std::unique_ptr<JWFeatureLayer>;

constexpr double kScale = 110;  // pixels for a degree of latitude

/// Where a layer is drawn: a rectangle of it, to the right of `left` pixels.
struct Panel {
    JWEnvelop window;
    double left;

    // Degrees of longitude are 0.79 as long as those of latitude at 38 degrees north.
    double x(double longitude) const { return left + (longitude - window.minX) * kScale * 0.79; }
    double y(double latitude) const { return 30 + (window.maxY - latitude) * kScale; }
    double width() const { return window.width() * kScale * 0.79; }
    double height() const { return window.height() * kScale; }
};

void drawRings(std::FILE* file, const JWPolygon& polygon, const Panel& panel) {
    for (const JWRing& ring : polygon.getRingList()) {
        char command = 'M';
        for (const JWRawPoint& p : ring.getPointList()) {
            std::fprintf(file, "%c%.1f %.1f", command, panel.x(p.x), panel.y(p.y));
            command = 'L';
        }
        std::fprintf(file, "Z");
    }
}

void drawFeature(std::FILE* file, const JWGeometry* geometry, const Panel& panel) {
    std::fprintf(file, "<path d=\"");
    if (const auto* polygon = dynamic_cast<const JWPolygon*>(geometry)) {
        drawRings(file, *polygon, panel);
    }
    if (const auto* polygons = dynamic_cast<const JWMultiPolygon*>(geometry)) {
        for (const JWPolygon& part : polygons->getMemberList()) drawRings(file, part, panel);
    }
    std::fprintf(file, "\"/>\n");
}

bool drawLayer(std::FILE* file, JWFeatureLayer& layer, const Panel& panel, const char* title) {
    JWFeatureClass found;
    const int count = layer.getFeaturesByEnvelopFilter(panel.window, JWRelationOverlap, found);
    std::fprintf(file,
                 "<text x=\"%.1f\" y=\"20\" font-family=\"sans-serif\" font-size=\"12\">%s</text>\n"
                 "<svg x=\"%.1f\" y=\"30\" width=\"%.1f\" height=\"%.1f\" "
                 "viewBox=\"%.1f 30 %.1f %.1f\">\n"
                 "<g fill=\"#27a\" fill-opacity=\"0.4\" fill-rule=\"evenodd\" stroke=\"#024\" "
                 "stroke-width=\"0.5\">\n",
                 panel.left, title, panel.left, panel.width(), panel.height(), panel.left,
                 panel.width(), panel.height());
    for (int i = 0; i < found.getFeatureCount(); ++i) {
        drawFeature(file, found.getFeatureAt(i)->getGeometryPtr(), panel);
    }
    std::fprintf(file, "</g></svg>\n");
    return count >= 0;
}

/// The layer simplified by Douglas-Peucker, in memory; null when that failed.
Layer simplified(JWFeatureLayer& input, JWDataSource& memory, double tolerance, bool coverage) {
    JWSimplifyOptions options;
    options.tolerance = tolerance;
    options.minimumRingPoints = 4;
    options.coverage = coverage;
    options.threads = 0;
    Layer output(memory.createLayer(coverage ? "coverage" : "each", JWWKBMultiPolygon,
                                    input.getSpatialReference()));
    const bool done =
        output && JWGeometrySimplicify::simplifyLayer(&input, output.get(), options) >= 0;
    return done ? std::move(output) : nullptr;
}

bool drawAll(std::FILE* file, JWFeatureLayer& layer, double tolerance, const JWEnvelop& window) {
    const Source memory(JWDataSource::createInMemory());
    const Layer each = simplified(layer, *memory, tolerance, false);
    const Layer together = simplified(layer, *memory, tolerance, true);
    if (!each || !together) return false;
    Panel panel{window, 10};
    const double step = panel.width() + 10;
    std::fprintf(file,
                 "<svg xmlns=\"http://www.w3.org/2000/svg\" width=\"%.0f\" height=\"%.0f\">\n"
                 "<rect width=\"100%%\" height=\"100%%\" fill=\"white\"/>\n",
                 3 * step + 10, panel.height() + 40);
    bool isDrawn = drawLayer(file, layer, panel, "as they are");
    panel.left += step;
    isDrawn = drawLayer(file, *each, panel, "each by itself: gaps white, overlaps dark") && isDrawn;
    panel.left += step;
    isDrawn = drawLayer(file, *together, panel, "as a coverage") && isDrawn;
    std::fprintf(file, "</svg>\n");
    return isDrawn;
}

}  // namespace

int main(int argc, char** argv) {
    if (argc != 8) {
        std::fprintf(stderr,
                     "usage: simplify_coverage FILE TOLERANCE MINX MINY MAXX MAXY PICTURE.svg\n");
        return 2;
    }
    const Source source(JWDataSource::open(argv[1]));
    const Layer layer(source ? source->openLayer(0) : nullptr);
    const JWEnvelop window(std::atof(argv[3]), std::atof(argv[4]), std::atof(argv[5]),
                           std::atof(argv[6]));
    std::FILE* file = layer ? std::fopen(argv[7], "w") : nullptr;
    if (file == nullptr) {
        std::fprintf(stderr, "%s cannot be %s\n", argv[layer ? 7 : 1], layer ? "written" : "read");
        return 1;
    }
    const bool isDrawn = drawAll(file, *layer, std::atof(argv[2]), window);
    if (std::fclose(file) != 0 || !isDrawn) {
        std::fprintf(stderr, "%s: %s\n", argv[7], JWReport::lastError().text.c_str());
        return 1;
    }
    return 0;
}
