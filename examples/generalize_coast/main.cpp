// SPDX-License-Identifier: MIT
//
// Draws a coast simplified and smoothed by every method, one panel each, as SVG:
//
//     generalize_coast countries_50m.gpkg 4 58 8 62.5 generalization.svg
//
// The coast is the longest run of points of a ring inside the rectangle.
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <string>
#include <vector>

#include "jw_feature.h"
#include "jw_geometrysimplicify.h"
#include "jw_geometrysmooth.h"
#include "jw_report.h"

namespace {

using namespace jws;

std::vector<JWRawPoint> longestRun(const JWFeatureClass& features, const JWEnvelop& rectangle) {
    std::vector<JWRawPoint> longest, run;
    const auto scan = [&](const JWPolygon& polygon) {
        for (const JWRing& ring : polygon.getRingList()) {
            run.clear();
            for (const JWRawPoint& p : ring.getPointList()) {
                rectangle.contains(p) ? run.push_back(p) : run.clear();
                if (run.size() > longest.size()) longest = run;
            }
        }
    };
    for (int i = 0; i < features.getFeatureCount(); ++i) {
        const JWGeometry* geometry = features.getFeatureAt(i)->getGeometryPtr();
        if (const auto* polygon = dynamic_cast<const JWPolygon*>(geometry)) scan(*polygon);
        if (const auto* polygons = dynamic_cast<const JWMultiPolygon*>(geometry)) {
            for (const JWPolygon& polygon : polygons->getMemberList()) scan(polygon);
        }
    }
    return longest;
}

struct Panel {
    std::string title;
    JWLineString line;
};

/// The coast by every method; a degree of latitude is 111 km.
std::vector<Panel> panelsOf(const JWLineString& coast) {
    std::vector<Panel> panels;
    const auto simplified = [&](const char* title, enumJWSimplifyMethod method, double tolerance,
                                double maximum, int count) {
        JWSimplifyOptions options;
        options.method = method;
        options.tolerance = tolerance;
        options.maximumTolerance = maximum;
        options.count = count;
        panels.push_back({title, coast});
        JWGeometrySimplicify::geometrySimplicify(&panels.back().line, options);
    };
    simplified("Douglas-Peucker, 0.1", JWSimplifyDouglasPeucker, 0.1, 0, 0);
    simplified("Reumann-Witkam, 0.1", JWSimplifyReumannWitkam, 0.1, 0, 0);
    simplified("Lang, 0.1, look-ahead 8", JWSimplifyLang, 0.1, 0, 8);
    simplified("vertex reduction, 0.2", JWSimplifyVertexReduction, 0.2, 0, 0);
    simplified("Opheim, 0.01 to 1", JWSimplifyOpheim, 0.01, 1, 0);
    simplified("n-th point, 4", JWSimplifyNthPoint, 0, 0, 4);
    simplified("perpendicular distance, 0.1", JWSimplifyPerpendicularDistance, 0.1, 0, 0);
    const auto smoothed = [&](const char* title, JWSmoothOptions options) {
        panels.push_back({title, coast});
        JWGeometrySmooth::geometrySmooth(&panels.back().line, options);
    };
    JWSmoothOptions options;
    options.method = JWSmoothBoyle;
    options.lookAhead = 5;
    smoothed("Boyle, look-ahead 5", options);
    options.method = JWSmoothSlidingAveraging;
    smoothed("sliding mean of 5", options);
    options.method = JWSmoothDistanceWeighting;
    smoothed("distance weighting, 5", options);
    options.method = JWSmoothChaiken;
    options.tolerance = 0.05;
    smoothed("Chaiken, 0.05", options);
    options.method = JWSmoothBezier;
    options.degree = 6;
    options.points = 12;
    smoothed("Bezier, 6 segments, 12 points", options);
    options.method = JWSmoothHermite;
    options.step = 0.05;
    options.tangentScale = 0.5;
    smoothed("Hermite, step 0.05, scale 0.5", options);
    return panels;
}

void draw(std::FILE* file, const JWLineString& line, const JWEnvelop& box, const char* style) {
    std::fprintf(file, "<polyline fill=\"none\" %s points=\"", style);
    for (const JWRawPoint& p : line.getPointList()) {
        // Degrees of longitude are half as long as those of latitude at 60 degrees north.
        std::fprintf(file, "%.1f,%.1f ", (p.x - box.minX) * 40 + 10, (box.maxY - p.y) * 80 + 30);
    }
    std::fprintf(file, "\"/>\n");
}

bool writeSvg(const char* path, const JWLineString& coast) {
    std::FILE* file = std::fopen(path, "w");
    if (file == nullptr) return false;
    const JWEnvelop box = coast.getEnvelop();
    const int width = static_cast<int>(box.width() * 40) + 100;
    const int height = static_cast<int>(box.height() * 80) + 40;
    const std::vector<Panel> panels = panelsOf(coast);
    constexpr int columns = 5;
    const int rows = (static_cast<int>(panels.size()) + columns - 1) / columns;
    std::fprintf(file,
                 "<svg xmlns=\"http://www.w3.org/2000/svg\" width=\"%d\" height=\"%d\">\n"
                 "<rect width=\"100%%\" height=\"100%%\" fill=\"white\"/>\n",
                 columns * width, rows * height);
    for (std::size_t i = 0; i < panels.size(); ++i) {
        const int column = static_cast<int>(i) % columns, row = static_cast<int>(i) / columns;
        std::fprintf(file,
                     "<g transform=\"translate(%d %d)\">\n<text x=\"10\" y=\"18\" "
                     "font-family=\"sans-serif\" font-size=\"11\">%s: %d points</text>\n",
                     column * width, row * height, panels[i].title.c_str(),
                     panels[i].line.getPointCount());
        draw(file, coast, box, "stroke=\"#bbb\"");
        draw(file, panels[i].line, box, "stroke=\"#c03\" stroke-width=\"1.2\"");
        std::fprintf(file, "</g>\n");
    }
    std::fprintf(file, "</svg>\n");
    return std::fclose(file) == 0;
}

}  // namespace

int main(int argc, char** argv) {
    if (argc != 7) {
        std::fprintf(stderr, "usage: generalize_coast FILE MINX MINY MAXX MAXY PICTURE.svg\n");
        return 2;
    }
    const std::unique_ptr<JWDataSource> source(JWDataSource::open(argv[1]));
    const std::unique_ptr<JWFeatureLayer> layer(source ? source->openLayer(0) : nullptr);
    const JWEnvelop rectangle(std::atof(argv[2]), std::atof(argv[3]), std::atof(argv[4]),
                              std::atof(argv[5]));
    JWFeatureClass found;
    if (!layer || layer->getFeaturesByEnvelopFilter(rectangle, JWRelationOverlap, found) < 0) {
        std::fprintf(stderr, "%s: %s\n", argv[1], JWReport::lastError().text.c_str());
        return 1;
    }
    const JWLineString coast(longestRun(found, rectangle));
    if (coast.getPointCount() < 4) {
        std::fprintf(stderr, "no coast of 4 points in the rectangle\n");
        return 1;
    }
    if (!writeSvg(argv[6], coast)) {
        std::fprintf(stderr, "cannot write %s\n", argv[6]);
        return 1;
    }
    std::printf("%s: %d points\n", argv[6], coast.getPointCount());
    return 0;
}
